;;; leaders.lsp - labels on a duct plan.
;;;
;;; Draws a piece of duct with two outlets in inches, for a plan that is plotted at 1/4" = 1', and labels it with leaders:
;;; numbered tags, an arrow and a mark for the detail. Then it edits some of them, takes one apart and reports.
;;; Run it with:  ./tessary run examples/leaders.lsp --picture leaders.png
;;;
;;; Drawing files keep the points of a leader and not its symbol. So the program keeps the name of the symbol with each
;;; leader, and gives a drawing that has leaders already its symbols back instead of drawing:
;;;   ./tessary run examples/leaders.lsp --save plan.dxf
;;;   ./tessary run examples/leaders.lsp --open plan.dxf --picture plan.png

;; Tools

(defun must (result step)
  (if (null result)
    (progn (princ (strcat "\nThe example stops: " step " failed.")) (exit)))
  result)

(defun title (text) (princ (strcat "\n\n" text)))
(defun say (text) (princ (strcat "\n  " text)))
(defun value (code entity) (cdr (assoc code (entget entity))))

(defun entities (kind / found index names)
  (if (setq found (ssget "X" (list (cons 0 kind))))
    (repeat (setq index (sslength found))
      (setq names (cons (ssname found (setq index (1- index))) names))))
  names)

(defun make-layer (name color)
  (if (not (tblsearch "LAYER" name))
    (entmake (list '(0 . "LAYER") '(100 . "AcDbSymbolTableRecord") '(100 . "AcDbLayerTableRecord") (cons 2 name)
                   '(70 . 0) (cons 62 color) '(6 . "Continuous")))))

(defun draw-line (from to layer)
  (entmake (list '(0 . "LINE") (cons 8 layer) (cons 10 from) (cons 11 to))))

(defun draw-box (corner width height layer / a b c)
  (setq a (list (+ (car corner) width) (cadr corner))
        b (list (car a) (+ (cadr corner) height))
        c (list (car corner) (cadr b)))
  (draw-line corner a layer) (draw-line a b layer) (draw-line b c layer) (draw-line c corner layer))

;; Symbols
;;
;; A symbol is a block about its base point, which comes to lie on the leader's end. The leader's line stops one unit of
;; the block before it, from the left: at the rim of a circle of radius 1, at the back of an arrow that is 1 long.

(defun make-block (name contents)
  (if (not (tblsearch "BLOCK" name))
    (progn
      (entmake (list '(0 . "BLOCK") (cons 2 name) '(70 . 0) '(10 0.0 0.0 0.0)))
      (foreach entity contents (must (entmake entity) (strcat "a part of the symbol " name)))
      (must (entmake '((0 . "ENDBLK"))) (strcat "the symbol " name)))))

(setq circle '((0 . "CIRCLE") (8 . "0") (10 0.0 0.0 0.0) (40 . 1.0)))

;; A constant attribute: the number is part of the symbol.
(defun number-mark (number)
  (list '(0 . "ATTDEF") '(8 . "0") '(10 -0.4 -0.5 0.0) '(40 . 1.0) (cons 1 number) '(72 . 1) '(11 0.0 0.0 0.0)
        '(3 . "Number") '(2 . "NUMBER") '(70 . 2) '(74 . 2)))

(defun make-symbols ()
  (foreach number '("1" "2" "3")
    (make-block (strcat "TAG-" number) (list circle (number-mark number))))
  (make-block "ARROW"
    '(((0 . "LWPOLYLINE") (100 . "AcDbEntity") (8 . "0") (100 . "AcDbPolyline") (90 . 3) (70 . 1)
       (10 -1.0 -0.3) (10 0.0 0.0) (10 -1.0 0.3))))
  (make-block "DETAIL"
    (list circle
          '((0 . "CIRCLE") (8 . "0") (10 0.0 0.0 0.0) (40 . 0.8))
          '((0 . "LINE") (8 . "0") (10 -0.8 0.0 0.0) (11 0.8 0.0 0.0)))))

;; Leaders

;; size: of the symbol on paper, in inches.
(defun label (points symbol size / leader)
  (setq leader (must (qn_qn-leader-insert points "M-LABEL" symbol size) (strcat "the leader with " symbol)))
  (ts_xdput-list leader (list "symbol" symbol))
  leader)

(defun change-symbol (leader symbol)
  (qn_qn-leader-setBlock leader symbol)
  (ts_xdput-list leader (list "symbol" symbol)))

(defun symbol-of (leader) (cond ((ts_xdget leader "symbol")) (T "none")))

(defun numbers (point) (strcat "(" (rtos (car point) 2 0) " " (rtos (cadr point) 2 0) ")"))

(defun report (/ leaders)
  (setq leaders (entities "QNLEADER"))
  (title (strcat (itoa (length leaders)) " leaders at a scale of " (rtos (getvar "DIMSCALE") 2 0)))
  (foreach leader leaders
    (say (strcat (symbol-of leader) ": from " (numbers (value 10 leader)) " to " (numbers (value 12 leader))
                 ", symbol " (rtos (value 40 leader) 2 1) " in radius, "
                 (rtos (AcDbCurve::getLength leader) 2 1) " in from end to end"))))

(defun draw-plan ()
  (make-layer "M-DUCT" 4)
  (make-layer "M-DIFFUSER" 3)
  (make-layer "M-LABEL" 1)
  (draw-box '(0.0 0.0) 480.0 24.0 "M-DUCT")
  (draw-box '(96.0 -72.0) 24.0 24.0 "M-DIFFUSER")
  (draw-box '(336.0 -72.0) 24.0 24.0 "M-DIFFUSER")
  (draw-line '(108.0 -48.0) '(108.0 0.0) "M-DUCT")
  (draw-line '(348.0 -48.0) '(348.0 0.0) "M-DUCT"))

(defun place-leaders (/ first second third arrow detail parts)
  (title "Leaders")
  (setq first  (label '((114.0 -54.0) (150.0 -96.0) (198.0 -96.0)) "TAG-1" 0.1875)
        second (label '((354.0 -54.0) (390.0 -96.0) (438.0 -96.0)) "TAG-1" 0.1875)
        third  (label '((60.0 12.0) (90.0 66.0) (150.0 66.0)) "TAG-3" 0.1875)
        arrow  (label '((312.0 84.0) (264.0 84.0) (240.0 24.0)) "ARROW" 0.25)
        detail (label '((420.0 24.0) (444.0 66.0) (444.0 102.0)) "DETAIL" 0.25))
  (say "5 leaders placed")
  (change-symbol second "TAG-2")
  (say "the second tag shows its number")
  (qn_qn-leader-setOffset third 0.25)
  (say "the third tag is as large as the detail mark")
  (qn_qn-leader-setPoints detail '((420.0 24.0) (444.0 66.0) (486.0 66.0)))
  (say "the detail mark lies beside the duct")
  (command "_MOVE" arrow "" '(0.0 0.0) '(-24.0 0.0))
  (setq parts (mapcar '(lambda (part) (value 0 (cdr part))) (qn_qn-leader-explode arrow)))
  (entdel arrow)
  (say (strcat "the arrow is taken apart: " (vl-princ-to-string parts))))

;; For drawings that were opened.
(defun restore-symbols (leaders / name count)
  (setq count 0)
  (foreach leader leaders
    (if (and (setq name (ts_xdget leader "symbol")) (tblsearch "BLOCK" name) (qn_qn-leader-setBlock leader name))
      (setq count (1+ count))))
  (title (strcat (itoa count) " leaders have their symbols again")))

(defun main (/ leaders)
  (if (setq leaders (entities "QNLEADER"))
    (restore-symbols leaders)
    (progn
      (setvar "DIMSCALE" 48)
      (make-symbols)
      (draw-plan)
      (place-leaders)))
  (report)
  (princ))

(main)
