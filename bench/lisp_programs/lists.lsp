; Building, reversing, mapping over and searching lists.
(defun measured (/ l s i)
  (repeat 20
    (setq i 0 l nil)
    (while (< i 2000)
      (setq l (cons (list i (* i 3)) l) i (1+ i)))
    (setq l (reverse l) s 0)
    (foreach pair l (setq s (+ s (cadr pair))))
    (setq s (+ s (apply '+ (mapcar '(lambda (pair) (car pair)) l))))
    (repeat 50 (setq s (+ s (cadr (assoc 1000 l))))))
  s)
