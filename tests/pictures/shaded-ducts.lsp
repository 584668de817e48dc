;;; shaded from -1,-1,0.8
;; Round and rectangular duct, one above the other, an elbow, and lines, a circle, faces and text among them.

(defun run (from to size) (append from to (list 0 0.0 0.0) size '(0.0 0.0 "" "" 0 0.0)))
(defun layer (name color)
  (entmake (list '(0 . "LAYER") '(100 . "AcDbSymbolTableRecord") '(100 . "AcDbLayerTableRecord") (cons 2 name) '(70 . 0)
                 (cons 62 color) '(6 . "Continuous"))))
(layer "M-DUCT" 4)
(layer "M-PIPE" 1)

(setvar "CLAYER" "M-DUCT")
(qn_qn-drawTripleCenter nil 0 (run '(0.0 0.0 40.0) '(160.0 0.0 40.0) '(30.0 16.0 "RC")))
(setvar "CLAYER" "M-PIPE")
(qn_qn-drawTripleCenter nil 0 (run '(60.0 -80.0 10.0) '(60.0 80.0 10.0) '(24.0 24.0 "RD")))
(qn_qn-drawTripleElbow nil 0 nil 36.0 (run '(0.0 60.0 30.0) '(150.0 60.0 30.0) '(24.0 24.0 "RD"))
                                     (run '(150.0 60.0 30.0) '(150.0 60.0 130.0) '(24.0 24.0 "RD")))

;; The floor: one sheet's corners run one way round, the other's the other way. Both are lit alike.
(setvar "CLAYER" "0")
(entmake '((0 . "3DFACE") (62 . 8) (10 -40.0 -100.0 -10.0) (11 80.0 -100.0 -10.0) (12 80.0 100.0 -10.0) (13 -40.0 100.0 -10.0)))
(entmake '((0 . "3DFACE") (62 . 8) (10 80.0 -100.0 -10.0) (11 80.0 100.0 -10.0) (12 180.0 100.0 -10.0) (13 180.0 -100.0 -10.0)))
(entmake '((0 . "LINE") (62 . 2) (10 -40.0 0.0 40.0) (11 200.0 0.0 40.0)))
(entmake '((0 . "CIRCLE") (62 . 3) (10 110.0 0.0 48.0) (40 . 12.0)))
(entmake '((0 . "TEXT") (62 . 7) (10 -30.0 -90.0 -10.0) (40 . 14.0) (1 . "LEVEL 2")))
