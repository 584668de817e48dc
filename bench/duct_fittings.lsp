;;; What duct fittings cost: against the twelve lines of a box made by entmake, each by itself, then 1,000 of mixed kinds.
;;; bench/duct_fittings.sh runs it with the add-in and the module with the clock loaded.

(defun run (from to size) (append from to (list 0 0.0 0.0 (car size) (cadr size) (caddr size) 0.0 0.0 "" "" 0 0.0)))
(setq rectangular '(24.0 16.0 "RC") round '(14.0 14.0 "RD")
      along  '((0.0 0.0 0.0) (200.0 0.0 0.0))
      onward '((200.0 0.0 0.0) (400.0 0.0 0.0))
      up     '((200.0 0.0 0.0) (200.0 200.0 0.0))
      aside  '((200.0 0.0 0.0) (200.0 -200.0 0.0))
      left   '((200.0 0.0 0.0) (400.0 200.0 0.0))
      right  '((200.0 0.0 0.0) (400.0 -200.0 0.0)))
(defun at (place size) (run (car place) (cadr place) size))

;; Everything a call needs is made before, so that the calls alone are timed.
(setq r-along (at along rectangular) r-onward (at onward rectangular) r-up (at up rectangular)
      o-along (at along round) o-onward (at onward round) o-up (at up round) o-aside (at aside round)
      r-left (at left rectangular) r-right (at right rectangular) small (at onward '(18.0 12.0 "RC"))
      box (list '(0 . "LINE") '(10 0.0 0.0 0.0) '(11 1.0 0.0 0.0)))
(defun lines ()        (repeat 12 (entmake box)) T)
(defun straight ()     (qn_qn-drawTripleCenter nil 0 r-along))
(defun transition ()   (qn_qn-drawTripleTransition nil 0 r-along small))
(defun round-elbow ()  (qn_qn-drawTripleElbow nil 0 nil 21.0 o-along o-up))
(defun flat-elbow ()   (qn_qn-drawTripleElbow nil 0 nil 36.0 r-along r-up))
(defun square-elbow () (qn_qn-drawTripleElbow nil 0 T 0.0 r-along r-up))
(defun hanger ()       (qn_qn-drawHanger nil '(0.0 0.0 0.0) 0.0 24.0 16.0 nil 0.5 1.5 40.0 0))
(defun wye ()          (qn_qn-drawTripleWye nil 0 nil 0.0 r-along r-left r-right))
(defun takeoff ()      (qn_qn-drawTripleTakeoff nil 0 nil 0.0 r-along r-onward o-aside))

;; Milliseconds a call, the best of several batches; and for drawing what a call made for the first time, which joins
;; its bodies.
(defun milliseconds (work count / start least)
  (if (null (apply work nil)) (progn (princ "\nA fitting is refused.") (exit)))
  (repeat 5
    (setq start (bench-clock))
    (repeat count (apply work nil))
    (setq least (if least (min least (- (bench-clock) start)) (- (bench-clock) start))))
  (/ (* 1000.0 least) count))
(setq base (milliseconds 'lines 50))
(defun solid-of (result) (if (listp result) (cdr (car result)) result))
(defun first-drawing (work / made)
  (repeat 20 (setq made (cons (solid-of (apply work nil)) made)))
  (/ (* 1000.0 (apply 'bench-draw (cons 1 made))) 20))
(defun report (name work wanted / time)
  (setq time (milliseconds work 20))
  (princ (strcat "\n" name ": " (rtos time 2 3) " ms" (if wanted (strcat " (at most " (itoa wanted) " wanted)") "")
                 ", ratio " (rtos (/ time base) 2 1) " to twelve lines; drawn for the first time: "
                 (rtos (first-drawing work) 2 3) " ms")))

(report "straight duct" 'straight nil)
(report "transition" 'transition 2)
(report "round radius elbow" 'round-elbow 2)
(report "rectangular radius elbow" 'flat-elbow 2)
(report "square elbow" 'square-elbow nil)
(report "trapeze hanger" 'hanger 2)
(report "takeoff with trims" 'takeoff 20)
(report "wye" 'wye nil)

;; Drawing again what is there must not cost what making it cost.
(setq elbow (cdr (assoc "en1" (round-elbow))) branch (cdr (assoc "en1" (takeoff))))
(princ (strcat "\ndrawing a round elbow over making it: ratio "
               (rtos (/ (* 1000.0 (/ (bench-draw 200 elbow) 200)) (milliseconds 'round-elbow 20)) 2 2)
               "; a takeoff: ratio "
               (rtos (/ (* 1000.0 (/ (bench-draw 200 branch) 200)) (milliseconds 'takeoff 20)) 2 2)))

(setq memory (bench-memory) start (bench-clock) made nil)
(defun kilobytes () (rtos (/ (- (bench-memory) memory) 1024.0 1000.0) 2 1))
(repeat 125
  (foreach work '(straight transition round-elbow flat-elbow square-elbow hanger takeoff wye)
    (setq made (cons (solid-of (apply work nil)) made))))
(princ (strcat "\n1,000 mixed fittings: made in " (rtos (- (bench-clock) start) 2 2) " s, " (kilobytes) " KB of memory each"))
(apply 'bench-draw (cons 1 made))
(princ (strcat "; made and drawn in " (rtos (- (bench-clock) start) 2 2) " s (at most 10 wanted), " (kilobytes) " KB each"))
(princ)
