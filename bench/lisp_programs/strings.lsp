; Joining and cutting strings.
(defun measured (/ s n i)
  (setq n 0)
  (repeat 200
    (setq s "" i 0)
    (while (< i 100)
      (setq s (strcat s (itoa i) ",") i (1+ i)))
    (setq i 1)
    (while (< i 280)
      (if (= (substr s i 1) ",") (setq n (1+ n)))
      (setq i (1+ i))))
  n)
