;;; What a leader costs against two lines and a block reference that look the same: drawing, measuring, snapping. With
;;; the variable LOAD set to a list of two file names, what reading them costs instead. bench/leaders.sh runs it.

(setq rounds 20000)
(defun best (work / least)
  (setq least (work))
  (repeat 6 (setq least (min least (work))))
  least)
(defun line (topic ratio wanted)
  (princ (strcat "\n" topic ": ratio " (rtos ratio 2 2) " (at most " (itoa wanted) " wanted)")))

(entmake '((0 . "BLOCK") (2 . "ROUND") (70 . 0) (10 0.0 0.0 0.0)))
(entmake '((0 . "CIRCLE") (8 . "0") (10 0.0 0.0 0.0) (40 . 1.0)))
(entmake '((0 . "LINE") (8 . "0") (10 -1.0 0.0 0.0) (11 1.0 0.0 0.0)))
(entmake '((0 . "ENDBLK")))
(setq whole (qn_qn-leader-insert '((0.0 0.0 0.0) (2.0 4.0 0.0) (9.0 5.0 0.0)) "0" "ROUND" 1.5)
      parts (mapcar 'cdr (qn_qn-leader-explode whole)))

(foreach topic '(("drawing a leader over its parts" bench-draw) ("extents of a leader over its parts" bench-extents)
                 ("snapping to a leader over its parts" bench-osnap))
  (setq ask (cadr topic))
  (line (car topic)
        (/ (best (function (lambda () (apply ask (list rounds whole)))))
           (best (function (lambda () (apply ask (cons rounds parts))))))
        2))

;; Files: as many leaders, and lines and inserts of the same look.
(defun load-time (file) (best (function (lambda () (bench-load file)))))
(if (findfile "leaders.dxf")
  (line "reading 10,000 leaders over reading 20,000 lines and 10,000 inserts"
        (/ (load-time "leaders.dxf") (load-time "parts.dxf")) 1))
(princ)
