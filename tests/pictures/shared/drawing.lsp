;;; Short ways to put things into a drawing, for the programs that draw the pictures.

(defun make (data) (entmakex data))
(defun line (from to) (make (list '(0 . "LINE") (cons 10 from) (cons 11 to))))
(defun on-layer (name entity)
  (entmod (subst (cons 8 name) (assoc 8 (entget entity)) (entget entity)))
  entity)
(defun with (groups entity) (entmod (append (entget entity) groups)) entity)

;; A frame that every picture has, so that what is in it always has the same place and size.
(defun frame (width height)
  (make (list '(0 . "LWPOLYLINE") '(100 . "AcDbEntity") '(62 . 8) '(100 . "AcDbPolyline") '(90 . 4) '(70 . 1)
              '(10 0.0 0.0) (list 10 width 0.0) (list 10 width height) (list 10 0.0 height))))

(defun layer (name color)
  (entmake (list '(0 . "LAYER") '(100 . "AcDbSymbolTableRecord") '(100 . "AcDbLayerTableRecord") (cons 2 name)
                 '(70 . 0) (cons 62 color) '(6 . "Continuous"))))

;; A block of the entities in the list, each a list of groups.
(defun block (name parts)
  (entmake (list '(0 . "BLOCK") (cons 2 name) '(70 . 0) '(10 0.0 0.0 0.0)))
  (foreach part parts (entmake part))
  (entmake '((0 . "ENDBLK"))))

;; Symbols fit into a circle of radius 1.
(setq circle-part '((0 . "CIRCLE") (8 . "0") (10 0.0 0.0 0.0) (40 . 1.0)))
(defun line-part (x1 y1 x2 y2) (list '(0 . "LINE") '(8 . "0") (list 10 x1 y1 0.0) (list 11 x2 y2 0.0)))
(defun text-part (text height x y)
  (list '(0 . "TEXT") '(8 . "0") (list 10 x y 0.0) (cons 40 height) (cons 1 text) '(72 . 1) '(73 . 2) (list 11 x y 0.0)))

(defun leader-on (layer start middle end offset block)
  (qn_qn-leader-insert (list start middle end) layer block offset))
(defun leader (start middle end offset block) (leader-on "LEADERS" start middle end offset block))
