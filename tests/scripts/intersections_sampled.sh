#!/bin/bash
# Arcs and lines of runs at random places: the distances of the three functions against distances found by walking
# along the run in small steps, with code that shares nothing with the add-in.
set -u
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1

cat >sampled.lsp <<'LISP'
(setq seed 20117.0)
; Uniform in [low, high), always the same numbers.
(defun random (low high)
  (setq seed (rem (+ (* seed 16807.0)) 2147483647.0))
  (+ low (* (- high low) (/ seed 2147483647.0))))

(defun polar2 (p a d) (list (+ (car p) (* d (cos a))) (+ (cadr p) (* d (sin a)))))

; Place on a run at a distance from its start; straight on beyond its ends.
(defun place (p a turn r s at / c end)
  (setq c (polar2 p (+ a (* turn (/ pi 2))) r))
  (cond ((< at 0) (polar2 p a at))
        ((<= at (* r s)) (polar2 c (+ (- a (* turn (/ pi 2))) (* turn (/ at r))) r))
        (T (setq end (place p a turn r s (* r s)))
           (polar2 end (+ a (* turn s)) (- at (* r s))))))

(defun side (q1 q2 p)
  (- (* (- (car q2) (car q1)) (- (cadr p) (cadr q1))) (* (- (cadr q2) (cadr q1)) (- (car p) (car q1)))))
(defun along (q1 q2 p / d)
  (setq d (distance q1 q2))
  (/ (+ (* (- (car q2) (car q1)) (- (car p) (car q1))) (* (- (cadr q2) (cadr q1)) (- (cadr p) (cadr q1)))) d))

; Distances from `low` to `high` along the run at which it crosses the segment; a step that ends too near to a
; tangent contact or to an end of anything sets `doubtful`.
(defun walked (p a turn r s low high q1 q2 / steps i before after at found left right middle where)
  (setq steps 400 i 0 before (side q1 q2 (place p a turn r s low)) found nil)
  (while (< i steps)
    (setq i (1+ i) at (+ low (* i (/ (- high low) steps))) after (side q1 q2 (place p a turn r s at)))
    (if (< (abs after) 1e-3) (setq doubtful T))
    (if (/= (< before 0) (< after 0))
      (progn
        (setq left (+ low (* (1- i) (/ (- high low) steps))) right at)
        (repeat 45
          (setq middle (/ (+ left right) 2))
          (if (= (< (side q1 q2 (place p a turn r s middle)) 0) (< before 0))
            (setq left middle)
            (setq right middle)))
        (setq where (along q1 q2 (place p a turn r s left)))
        (if (or (< (abs where) 1e-3) (< (abs (- where (distance q1 q2))) 1e-3)) (setq doubtful T))
        (if (< 0 where (distance q1 q2)) (setq found (cons (list left where) found)))))
    (setq before after))
  (reverse found))

(defun same (wanted given)
  (and (= (length wanted) (length given))
       (equal (mapcar (function (lambda (i) (nth i wanted))) (vl-sort-i wanted (quote <)))
              (mapcar (function (lambda (i) (nth i given))) (vl-sort-i given (quote <)))
              1e-6)))

(defun check (what wanted given)
  (setq given (mapcar (quote cdr) given))
  (if doubtful
    (setq skipped (1+ skipped))
    (progn
      (setq checked (1+ checked) found (+ found (length wanted)))
      (if (not (same wanted given))
        (progn (setq wrong (1+ wrong)) (print (list what wanted given)))))))

(defun longer (q1 q2 e) (polar2 q1 (angle q2 q1) e))

(setq checked 0 skipped 0 found 0 wrong 0)
(repeat 400
  (setq p (list (random -3 3) (random -3 3)) a (random -7 7) turn (if (< (random 0 1) 0.5) 1 -1)
        r (random 0.5 3) s (random 0.3 5.5) e (random 0.2 4) l (* r s)
        q1 (list (random -5 5) (random -5 5)) q2 (list (random -5 5) (random -5 5))
        far1 (longer q1 q2 e) far2 (longer q2 q1 e)
        doubtful nil ways (walked p a turn r s 0.0 l q1 q2))
  ; Without extensions both turns count from the start.
  (check "line" (mapcar (quote car) ways) (qn_qn-intersectArcLine p a turn r s q1 q2))
  (check "of line" (mapcar (quote cadr) ways) (qn_qn-intersectLineArc q1 q2 p a turn r s))
  ; A left turn goes straight on at both ends; a right turn has both extensions behind its start.
  (setq doubtful nil behind (walked p a turn r s (- e) 0.0 far1 far2) ways (walked p a turn r s 0.0 l far1 far2)
        ahead (if (= turn 1) (walked p a turn r s l (+ l e) far1 far2)))
  (check "extended line"
    (append (mapcar (quote (lambda (way) (if (= turn 1) (car way) (- l (car way))))) behind)
            (if (= turn 1) nil (mapcar (quote car) behind))
            (mapcar (quote car) ways) (mapcar (quote car) ahead))
    (qn_qn-intersectArcLine e p a turn r s q1 q2))
  (check "of extended line"
    (mapcar (quote (lambda (way) (- (cadr way) e))) (append behind (if (= turn 1) nil behind) ways ahead))
    (qn_qn-intersectLineArc e q1 q2 p a turn r s))
  ; Two arcs: the second one as a chain of short chords.
  (setq p2 (list (random -3 3) (random -3 3)) a2 (random -7 7) turn2 (if (< (random 0 1) 0.5) 1 -1)
        r2 (random 0.5 3) s2 (random 0.3 5.5) c2 (polar2 p2 (+ a2 (* turn2 (/ pi 2))) r2) doubtful nil arcs nil i 0
        steps 400 before (- (distance c2 (place p a turn r s 0.0)) r2))
  (while (< i steps)
    (setq i (1+ i) after (- (distance c2 (place p a turn r s (* l (/ i 400.0)))) r2))
    (if (< (abs after) 2e-3) (setq doubtful T))
    (if (/= (< before 0) (< after 0))
      (progn
        (setq left (* l (/ (1- i) 400.0)) right (* l (/ i 400.0)))
        (repeat 45
          (setq middle (/ (+ left right) 2))
          (if (= (< (- (distance c2 (place p a turn r s middle)) r2) 0) (< before 0))
            (setq left middle)
            (setq right middle)))
        (setq way (rem (+ (* 4 pi) (* turn2 (- (angle c2 (place p a turn r s left)) (- a2 (* turn2 (/ pi 2))))))
                       (* 2 pi))
              way (if (< way 0) (+ way (* 2 pi)) way))
        (if (or (< (abs (- way s2)) 1e-3) (< way 1e-3)) (setq doubtful T))
        (if (< way s2) (setq arcs (cons left arcs)))))
    (setq before after))
  (check "arc" arcs (qn_qn-intersectArcArc p a turn r s p2 a2 turn2 r2 s2))
)

(print (list (quote wrong) wrong (quote enough) (< 400 checked) (< 300 found) (< skipped checked)))
LISP

"$TESSARY_WINE" "$TESSARY_BIN/drafthost.exe" run --module "Z:${TESSARY_BIN//\//\\}\\Tessary2010x64.arx" \
    sampled.lsp >out.txt 2>err.txt
status=$?
if [ $status != 0 ] || ! grep -qF '(WRONG 0 ENOUGH T T T)' out.txt; then
    echo "status $status"
    tail -n 30 out.txt
    tail -n 30 err.txt
    exit 1
fi
