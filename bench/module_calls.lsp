;;; What a call of the add-in costs from LISP: against a built-in call, and against the bare geometry called from C++.
;;; bench/module_calls.sh runs it with the add-in and the baseline module loaded.

(setq count 200000)

;; Nanoseconds for one of the count runs that work, a function without arguments, does in a loop.
(defun each (work / start)
  (setq start (bench-clock))
  (work)
  (/ (- (bench-clock) start) count 1.0e-9))

;; The best of five, since other programs only ever add to a time.
(defun best (work / least)
  (setq least (each work))
  (repeat 4 (setq least (min least (each work))))
  least)

(defun best-bare (bare / least)
  (setq least (bare count))
  (repeat 4 (setq least (min least (bare count))))
  (/ least count 1.0e-9))

(defun line (topic text) (princ (strcat "\n" topic ": " text)))

(setq arc (entmakex '((0 . "ARC") (10 1.0 2.0 0.0) (40 . 5.0) (50 . 0.25) (51 . 2.0)))
      p1  '(0.0 0.0 0.0)
      p2  '(1.0 0.0 0.0))

(setq built-in     (best (lambda () (repeat count (sin 0.5))))
      external     (best (lambda () (repeat count (asin 0.5))))
      curve-length (best (lambda () (repeat count (AcDbCurve::getLength arc))))
      intersection (best (lambda () (repeat count (qn_qn-intersectArcArc p1 0.0 1 5.0 1.5707963 p2 1.5707963 1 5.0 1.5707963))))
      bare-length       (best-bare bench-bare-length)
      bare-intersection (best-bare bench-bare-intersection)
      overhead     (- external built-in))

(line "trivial external call over a built-in call"
      (strcat (rtos external 2 0) " ns against " (rtos built-in 2 0) " ns: ratio " (rtos (/ external built-in) 2 1)
              ", " (rtos (/ overhead 1000.0) 2 3) " microseconds more (at most 1 wanted)"))
(line "AcDbCurve::getLength over bare geometry plus a call"
      (strcat "ratio " (rtos (/ curve-length (+ bare-length external)) 2 2) " (at most 3 wanted)"))
(line "qn_qn-intersectArcArc over bare geometry plus a call"
      (strcat "ratio " (rtos (/ intersection (+ bare-intersection external)) 2 2) " (at most 3 wanted)"))
(princ)
