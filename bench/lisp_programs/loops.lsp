; Real arithmetic in a loop.
(defun measured (/ x i)
  (setq x 0.0 i 0)
  (while (< i 300000)
    (setq x (+ x (/ 1.0 (+ 1.0 (* i 0.5)))) i (1+ i)))
  (fix x))
