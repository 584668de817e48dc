; Function calls and integer arithmetic.
(defun fibonacci (n)
  (if (< n 2)
    n
    (+ (fibonacci (- n 1)) (fibonacci (- n 2)))))
(defun measured () (fibonacci 25))
