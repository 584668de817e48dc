; Function calls with several arguments.
(defun tak (x y z)
  (if (not (< y x))
    z
    (tak (tak (1- x) y z) (tak (1- y) z x) (tak (1- z) x y))))
(defun measured () (tak 18 12 6))
