;;; layers.lsp - the Layers dialog on a standards database of its own.
;;;
;;; This program makes "layers.qn" beside the drawing, fills it with layer systems, their keys and layers, and shows the
;;; Layers dialog on it: on the left the systems, on the right the keys of the selected one, below all layers. Afterwards
;;; it prints what the database holds.
;;; Run it with:  ./tessary run --answers examples/layers.answers examples/layers.lsp
;;; examples/layers.answers is what a drafter does in the dialog; without it the dialog is cancelled.

;; The functions of the product that the dialog calls: how keys are shown, labels of pipes, exchange with spreadsheets.
(load "standards_tables")
(load "layer_keys")
(load "layer_exchange")

;; name, color, linetype, plots, lineweight in hundredths of a millimetre (nil: the default one)
(setq layers
  '(("G-ANNO"        7 "Continuous" -1 "18") ("G-GRID"        8 "CENTER"      0 nil)
    ("H-DUCT-SUPPLY" 4 "Continuous" -1 "50") ("H-DUCT-RETURN" 3 "Continuous" -1 "50")
    ("H-DUCT-CNTR"   1 "CENTER"     -1 "13") ("P-PIPE-HOT"    1 "DASHDOT"    -1 "35")
    ("P-PIPE-COLD"   5 "Continuous" -1 "35") ("X-OLD-DETAILS" 9 "Continuous" -1 nil)))

;; description, label prefix, keys with their layers; without a description the general system. Keys that begin with an
;; underscore are not shown.
(setq systems
  '((nil           ""   ("RoomNumber" . "G-ANNO") ("_Construction" . "G-GRID"))
    ("Supply Air"  "SA" ("Duct" . "H-DUCT-SUPPLY") ("DuctCenterline" . "H-DUCT-CNTR") ("FlexDuct" . "H-DUCT-SUPPLY"))
    ("Return Air"  "RA" ("Duct" . "H-DUCT-RETURN") ("DuctCenterline" . "H-DUCT-CNTR"))
    ("Plumbing"    "P"  ("Pipe10" . "P-PIPE-COLD") ("Pipe2" . "P-PIPE-COLD") ("PipeHot" . "P-PIPE-HOT"))))

(defun must (result step)
  (if (null result)
    (progn (princ (strcat "\nThe example stops: " step " failed. " (ts_lastError))) (exit)))
  result)

;; Adds a record to the current table; returns the number that it got.
(defun add (names values) (cdar (must (ts_append (mapcar 'cons names values)) "adding a record")))

;; The number of the layer with the name.
(defun layer-number (name)
  (cdaar (ts_sql (strcat "select ixLayer from tblLayer where sName = '" name "'"))))

(defun add-system (system position / number)
  (if (car system)
    (progn
      (ts_table "tblLayerSystem")
      (setq number (add '("sDescription" "sPrefix" "iSortOrder") (list (car system) (cadr system) position)))))
  (ts_table "tblLayerKey")
  (foreach key (cddr system)
    (add '("ixLayerSystem" "ixLayer" "sKey") (list number (layer-number (cdr key)) (car key)))))

(defun fill (/ position)
  (ts_table "tblLayer")
  (foreach layer layers (add '("sName" "iColor" "sLinetype" "bPlot" "sLineweight") layer))
  (setq position 1)
  (foreach system systems
    (add-system system position)
    (setq position (1+ position)))
  ;; The pipes of the plumbing are labelled with their size and what flows in them.
  (ts_table "tblLabelGroup")
  (foreach label '(("SIZE" "Size") ("FLOW" "Flow [l/s]"))
    (add '("sGroup" "sKey" "sLabel") (cons (layerSystems:labelGroup 3) label))))

(defun make-database (file)
  (ts_close_db)
  (ts_fdelete file)
  (must (ts_create_db file) (strcat "creating " file))
  (must (ts_connect file) "opening it")
  (must (standardsTables:create) "creating the tables")
  (fill)
  (ts_close_db))

(defun text-of (value) (cond ((null value) "-") ((= (type value) 'STR) value) (T (itoa value))))

(defun show-records (title statement)
  (princ (strcat "\n\n" title))
  (foreach record (ts_sql statement)
    (princ "\n ")
    (foreach field record (princ (strcat " " (text-of (cdr field)) ";")))))

(defun show-database (file)
  (must (ts_connect file "r") "opening the database again")
  (show-records "Layer systems"
                "select ixLayerSystem, sDescription, iSortOrder from tblLayerSystem order by iSortOrder")
  (show-records "Layer keys"
                (strcat "select s.sDescription, k.sKey, l.sName from (tblLayerKey as k inner join tblLayer as l"
                        " on k.ixLayer = l.ixLayer) left join tblLayerSystem as s on k.ixLayerSystem = s.ixLayerSystem"
                        " order by s.iSortOrder, k.sKey"))
  (show-records "Layers" "select sName, iColor, sLinetype, bPlot, sLineweight, sPlotstyle from tblLayer order by sName")
  (show-records "Labels of pipes" "select sGroup, sLabel from tblLabelGroup order by sGroup, ixLabelGroup")
  (ts_close_db)
  (princ "\n"))

(defun layers-example (/ file)
  (setq file (strcat (getvar "DWGPREFIX") "layers.qn"))
  (make-database file)
  (qn_qn-customizeLayers file)
  (show-database file)
  (princ))

(layers-example)
