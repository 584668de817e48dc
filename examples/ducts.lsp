;;; ducts.lsp - a small air-handling layout in solids.
;;;
;;; A riser comes up from the unit, a square elbow turns it into the main; the main sheds a round branch at a takeoff,
;;; gets smaller in a transition, turns in a radius elbow and splits in a wye; hangers carry it, a cable tray passes below.
;;; Inches; everything is drawn where the runs are, and every straight duct is cut back by what the fittings take of it.
;;; Run it with:
;;;   ./tessary run examples/ducts.lsp --save ducts.dxf --picture plan.png --shaded view.png --export ducts.stl --export parts.csv

;; Tools

(defun must (result step)
  (if (null result)
    (progn (princ (strcat "\nThe example stops: " step " failed.")) (exit)))
  result)

(defun title (text) (princ (strcat "\n" text)))
(defun value (name result) (cdr (assoc name result)))

(defun make-layer (name color)
  (if (not (tblsearch "LAYER" name))
    (entmake (list '(0 . "LAYER") '(100 . "AcDbSymbolTableRecord") '(100 . "AcDbLayerTableRecord") (cons 2 name)
                   '(70 . 0) (cons 62 color) '(6 . "Continuous")))))

;; Runs
;;
;; A run is known by its name. Points are the centre line's, so the justifications are empty; a size is width, height
;; and shape: "RC" rectangular, "RD" round. Fittings say how much of a run they take at either end.

(setq runs nil taken nil)

(defun add-run (name from to size)
  (setq runs (cons (list name from to size) runs)))

(defun taken-of (name where)
  (apply '+ (cons 0.0 (mapcar 'cadr (vl-remove-if-not '(lambda (entry) (equal (car entry) (cons name where))) taken)))))

(defun take (name where length)
  (setq taken (cons (list (cons name where) length) taken)))

;; The eighteen values that the functions want.
(defun values-of (name / run size)
  (setq run (must (assoc name runs) (strcat "finding the run " name)) size (cadddr run))
  (append (cadr run) (caddr run)
          (list 0 (taken-of name 'start) (taken-of name 'end) (car size) (cadr size) (caddr size)
                0.0 0.0 "" "" 0 0.0)))

(defun straight-duct (name)
  (must (qn_qn-drawTripleCenter nil 0 (values-of name)) (strcat "the duct " name)))

;; Fittings between named runs

(defun transition (before after / made)
  (setq made (must (qn_qn-drawTripleTransition nil 0 (values-of before) (values-of after)) "the transition"))
  (take before 'end (value "dHeadLength" made))
  (take after 'start (value "dTailLength" made)))

(defun elbow (kind before after / made)
  (setq made (must (cond ((eq kind 'square) (qn_qn-drawTripleElbow nil 0 T 0.0 (values-of before) (values-of after)))
                         ((eq kind 'tray) (qn_qn-drawTripleElbow nil 0 "CABLETRAY" 24.0 (values-of before) (values-of after)))
                         (T (qn_qn-drawTripleElbow nil 0 nil kind (values-of before) (values-of after))))
                   (strcat "the elbow after " before)))
  (take before 'end (value "dHeadLength" made))
  (take after 'start (value "dTailLength" made))
  made)

(defun wye (main left right / made)
  (setq made (must (qn_qn-drawTripleWye nil 0 nil 0.0 (values-of main) (values-of left) (values-of right)) "the wye"))
  (take main 'end (value "dHeadLength" made))
  (take left 'start (value "dTailLength1" made))
  (take right 'start (value "dTailLength2" made)))

(defun takeoff (main onward branch / made)
  (setq made (must (qn_qn-drawTripleTakeoff nil 0 nil 0.0 (values-of main) (values-of onward) (values-of branch))
                   "the takeoff"))
  (take main 'end (value "dHeadLength" made))
  (take onward 'start (value "dTailLength1" made))
  (take branch 'start (value "dTailLength2" made)))

;; The hangers hang from the slab above.
(setq slab 138.0)
(defun trapeze (place angle width height)
  (must (qn_qn-drawHanger nil place angle width height nil 0.5 1.5 slab 0) "a trapeze hanger"))
(defun band (place angle diameter)
  (must (qn_qn-drawHanger T place angle diameter diameter nil 1.0 0.125 slab 0) "a band hanger"))

;; The layout

(make-layer "M-SUPPLY" 150)
(make-layer "M-BRANCH" 4)
(make-layer "M-HANGER" 8)
(make-layer "E-TRAY" 30)

(setq large '(30.0 20.0 "RC") medium '(24.0 16.0 "RC") small '(18.0 16.0 "RC") round '(14.0 14.0 "RD") tray '(18.0 4.0 "RC"))

(add-run "riser"  '(0.0 0.0 36.0)     '(0.0 0.0 108.0)    large)
(add-run "main 1" '(0.0 0.0 108.0)    '(90.0 0.0 108.0)   large)
(add-run "main 2" '(90.0 0.0 108.0)   '(180.0 0.0 108.0)  large)
(add-run "main 3" '(180.0 0.0 108.0)  '(300.0 0.0 108.0)  medium)
(add-run "main 4" '(300.0 0.0 108.0)  '(300.0 132.0 108.0) medium)
(add-run "branch" '(90.0 0.0 108.0)   '(90.0 -84.0 108.0) round)
(add-run "left 1" '(300.0 132.0 108.0) '(228.0 204.0 108.0) small)
(add-run "left 2" '(228.0 204.0 108.0) '(228.0 288.0 108.0) small)
(add-run "right"  '(300.0 132.0 108.0) '(384.0 216.0 108.0) small)
(add-run "tray 1" '(-20.0 -48.0 84.0) '(216.0 -48.0 84.0) tray)
(add-run "tray 2" '(216.0 -48.0 84.0) '(216.0 96.0 84.0)  tray)

(title "Fittings")
(setvar "CLAYER" "M-SUPPLY")
(elbow 'square "riser" "main 1")
(takeoff "main 1" "main 2" "branch")
(transition "main 2" "main 3")
(elbow 36.0 "main 3" "main 4")
(wye "main 4" "left 1" "right")
(elbow 27.0 "left 1" "left 2")

(title "Straight ducts")
(foreach name '("riser" "main 1" "main 2" "main 3" "main 4" "left 1" "left 2" "right") (straight-duct name))
(setvar "CLAYER" "M-BRANCH")
(straight-duct "branch")
;; A plate closes the right branch for the time being.
(setq frame (must (qn_qn-getTripleCoord (values-of "right")) "finding the directions of the right branch")
      across (cadr frame) up (caddr frame))
(defun corner (y z / end)
  (setq end '(384.0 216.0 108.0))
  (mapcar '(lambda (p a b) (+ p (* y a) (* z b))) end across up))
(must (qn_qn-drawTripleSkin 0.0625 (list (corner 9.0 8.0) (corner -9.0 8.0) (corner -9.0 -8.0) (corner 9.0 -8.0)))
      "the plate")

(title "Hangers")
(setvar "CLAYER" "M-HANGER")
(trapeze '(40.0 0.0 108.0) 0.0 30.0 20.0)
(trapeze '(150.0 0.0 108.0) 0.0 30.0 20.0)
(trapeze '(240.0 0.0 108.0) 0.0 24.0 16.0)
(trapeze '(300.0 84.0 108.0) (/ pi 2) 24.0 16.0)
(band '(90.0 -60.0 108.0) (/ pi 2) 14.0)

(title "Cable tray")
(setvar "CLAYER" "E-TRAY")
(setq corner-piece (value "en1" (elbow 'tray "tray 1" "tray 2")))
;; One length with its elbow, as it is delivered.
(qn_qn-tripleUnion corner-piece (straight-duct "tray 2"))
(straight-duct "tray 1")

;; The report

(defun count-of (kind / found) (if (setq found (ssget "X" (list (cons 0 kind)))) (sslength found) 0))
(title (strcat "\nSolids in the drawing: " (itoa (count-of "QN_HVACSOLID"))))
(foreach run (reverse runs)
  (title (strcat "  " (car run) ": cut back " (rtos (taken-of (car run) 'start) 2 2) " and "
                 (rtos (taken-of (car run) 'end) 2 2))))
(princ)
