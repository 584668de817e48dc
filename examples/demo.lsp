;;; demo.lsp - the add-in at work on somebody else's drawing.
;;;
;;; Measures every curve and multiline text of the drawing, finds where its arcs and lines meet, marks those places, asks
;;; the drafter where the report goes and puts it there as framed multiline text.
;;; Run it with:  ./tessary demo

;; All entities of a kind, as a list of entity names.
(defun entities (kind / found index names)
  (if (setq found (ssget "X" (list (cons 0 kind))))
    (repeat (setq index (sslength found))
      (setq names (cons (ssname found (setq index (1- index))) names))))
  names)

(defun sum (numbers) (apply '+ (cons 0.0 numbers)))
(defun value (code entity) (cdr (assoc code (entget entity))))

;; Adds "kind: count, total length" to the report for one kind of curve.
(defun measure-curves (kind title / names lengths)
  (setq names   (entities kind)
        lengths (mapcar 'AcDbCurve::getLength names))
  (if names
    (progn
      (say (strcat title ": " (itoa (length names)) ", " (rtos (sum lengths) 2 2) " long in all, the longest "
                   (rtos (apply 'max lengths) 2 2)))
      (setq total-curves (+ total-curves (length names))
            total-length (+ total-length (sum lengths))))))

;; Prints a line and keeps it for the report in the drawing.
(defun say (text)
  (princ (strcat "\n  " text))
  (setq report (cons text report)))

;; An ARC entity as the five values of the intersection functions: start point, heading, turn, radius, sweep.
(defun arc-values (arc / centre radius from to)
  (setq centre (value 10 arc)
        radius (value 40 arc)
        from   (value 50 arc)
        to     (value 51 arc))
  (if (< to from) (setq to (+ to pi pi)))
  (list (polar centre from radius) (+ from (/ pi 2.0)) 1 radius (- to from)))

;; Where an arc meets a line: points, found from the distances along the arc. Both are lengthened by a hair, so that a
;; line that runs on from an arc's end counts as meeting it; a distance on that hair is brought back to the arc's end.
(defun meetings (arc line / hair whole values)
  (setq hair   0.002
        whole  (AcDbCurve::getLength arc)
        values (append (list hair) (arc-values arc) (list (value 10 line) (value 11 line))))
  (mapcar '(lambda (found) (AcDbCurve::getPointAtDist arc (max 0.0 (min whole (cdr found)))))
          (apply 'qn_qn-intersectArcLine values)))

;; Adds points to a list of points, leaving out those that are there already.
(defun merge (new points)
  (foreach point new
    (if (not (vl-some '(lambda (old) (equal old point 0.01)) points))
      (setq points (cons point points))))
  points)

(defun mark (point size)
  (entmake (list '(0 . "CIRCLE") '(8 . "TESSARY-MARKS") (cons 10 point) (cons 40 size))))

(defun frame (lower upper margin / left right bottom top)
  (setq left  (- (car lower) margin) bottom (- (cadr lower) margin)
        right (+ (car upper) margin) top    (+ (cadr upper) margin))
  (entmake (list '(0 . "LWPOLYLINE") '(100 . "AcDbEntity") '(8 . "TESSARY-REPORT") '(100 . "AcDbPolyline")
                 '(90 . 4) '(70 . 1)
                 (list 10 left bottom) (list 10 right bottom) (list 10 right top) (list 10 left top))))

(defun join-lines (lines)
  (if (cdr lines) (strcat (car lines) "\\P" (join-lines (cdr lines))) (car lines)))

(defun demo (/ report total-curves total-length points corner size text place width height)
  (setq total-curves 0 total-length 0.0)
  (entmake '((0 . "LAYER") (100 . "AcDbSymbolTableRecord") (100 . "AcDbLayerTableRecord")
             (2 . "TESSARY-MARKS") (70 . 0) (62 . 1) (6 . "Continuous")))
  (entmake '((0 . "LAYER") (100 . "AcDbSymbolTableRecord") (100 . "AcDbLayerTableRecord")
             (2 . "TESSARY-REPORT") (70 . 0) (62 . 3) (6 . "Continuous")))

  (princ "\nCurves of the drawing")
  (foreach kind '(("LINE" "lines") ("ARC" "arcs") ("CIRCLE" "circles") ("LWPOLYLINE" "polylines"))
    (measure-curves (car kind) (cadr kind)))
  (say (strcat "all curves: " (itoa total-curves) ", " (rtos total-length 2 2) " long"))

  (princ "\nMultiline texts")
  (foreach text (entities "MTEXT")
    (say (strcat "\"" (value 1 text) "\": " (rtos (AcDbMText::actualWidth text) 2 2) " wide, "
                 (rtos (AcDbMText::actualHeight text) 2 2) " high")))

  (princ "\nWhere arcs and lines meet")
  (foreach arc (entities "ARC")
    (foreach line (entities "LINE")
      (setq points (merge (meetings arc line) points))))
  (say (strcat "arcs and lines meet in " (itoa (length points)) " places"))

  (setq size   (/ (distance (getvar "EXTMIN") (getvar "EXTMAX")) 40.0)
        corner (getpoint "\nUpper left corner of the report: "))
  (foreach point points (mark point (/ size 6.0)))
  (if corner
    (progn
      (setvar "TEXTSIZE" (/ size 1.5))
      (setq text (AcDbMText::insert (join-lines (cons "{\\LMeasured by Tessary}" (reverse report))) corner
                                    (* size 22.0) "Standard" 1))
      (entmod (subst '(8 . "TESSARY-REPORT") (assoc 8 (entget text)) (entget text)))
      (setq width  (AcDbMText::actualWidth text)
            height (AcDbMText::actualHeight text))
      (princ (strcat "\nThe report is " (rtos width 2 2) " wide and " (rtos height 2 2)
                     " high; its last line measures " (rtos (AcDbMtext::lastLineWidth text) 2 2) "."))
      (frame (list (car corner) (- (cadr corner) height)) (list (+ (car corner) width) (cadr corner)) (/ size 1.5))))
  (princ))

(demo)
