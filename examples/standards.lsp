;;; standards.lsp - the drafting standards of an office, kept in a database.
;;;
;;; A standards database says on which layers an office draws, in which text styles, and how its schedules are
;;; labelled. This program makes one, "standards.qn" beside the drawing, with the six tables of the product
;;; (lisp/standards_tables.lsp defines them), fills it from the lists below and then does with it what programs do with a
;;; database: it walks through a table, looks records up, asks questions in SQL, changes, adds and deletes records, and
;;; compacts the file.
;;; Run it with:  ./tessary run examples/standards.lsp
;;; It may be run again: it begins with an empty database each time.

(load "standards_tables")

;; Tools

;; Ends the program when a step failed. The database functions then return nil and have printed why.
(defun must (result step)
  (if (null result)
    (progn (princ (strcat "\nThe example stops: " step " failed. " (ts_lastError))) (exit)))
  result)

(defun title (text) (princ (strcat "\n\n" text)))
(defun say (text) (princ (strcat "\n  " text)))

;; A record is a list of pairs: (("ixLayer" . 3) ("sName" . "M-DUCT-SUPPLY") ...). A field without a value is nil.
(defun field (name record) (cdr (assoc name record)))

;; A value as text that fills a column of that width.
(defun column (value width / text)
  (setq text (if value (vl-princ-to-string value) "-"))
  (while (< (strlen text) width) (setq text (strcat text " ")))
  text)

(defun say-columns (values widths) (say (vl-string-right-trim " " (apply 'strcat (mapcar 'column values widths)))))

;; Fields and values side by side, as ts_append and ts_replace take them. A list ("sName") without a value stands for a
;; field that is left empty; yes/no fields take -1 and 0.
(defun pairs (names values) (mapcar 'cons names values))

;; The standards: what the tables are filled with

;; name, colour, linetype, plots, lineweight in hundredths of a millimetre (nil: the default one)
(setq layers
  '(("G-ANNO"          7 "Continuous" -1 "18")  ("G-NPLT"        8 "Continuous"  0 nil)
    ("M-EQPM"          6 "Continuous" -1 "35")  ("M-DUCT-SUPPLY" 4 "Continuous" -1 "50")
    ("M-DUCT-RETURN"   3 "Continuous" -1 "50")  ("M-DUCT-EXHST"  2 "HIDDEN"     -1 "35")
    ("M-DUCT-CNTR"     1 "CENTER"     -1 "13")  ("P-PIPE-HOT"    1 "DASHDOT"    -1 "35")
    ("P-PIPE-COLD"     5 "Continuous" -1 "35")  ("E-TRAY"       30 "Continuous" -1 "25")
    ("X-OLD-DETAILS"   9 "Continuous" -1 nil)))

;; description, label prefix, ducts drawn solid, and the keys with their layers; keys without a system are general ones
(setq systems
  '((nil "" 0            ("Annotation" . "G-ANNO") ("Construction" . "G-NPLT") ("Equipment" . "M-EQPM"))
    ("Supply Air" "SA" 0 ("Duct" . "M-DUCT-SUPPLY") ("Centerline" . "M-DUCT-CNTR") ("Flex" . "M-DUCT-SUPPLY"))
    ("Return Air" "RA" 0 ("Duct" . "M-DUCT-RETURN") ("Centerline" . "M-DUCT-CNTR"))
    ("Exhaust" "EX" 0    ("Duct" . "M-DUCT-EXHST") ("Centerline" . "M-DUCT-CNTR"))
    ("Plumbing" "P" 0    ("Hot" . "P-PIPE-HOT") ("Cold" . "P-PIPE-COLD"))
    ("Cable Tray" "E" -1 ("Tray" . "E-TRAY"))))

;; key, style (nil: that of DEFAULT), height, width factor
(setq text-styles
  '(("DEFAULT" "Standard" 2.5 1.0) ("SCHEDULE" "Standard" 2.0 0.9) ("TITLE" nil 5.0 nil) ("TAG" nil nil nil)))

;; group, key, label, column width (nil: automatic), justification
(setq labels
  '(("Air Devices" "Schedule Title" "AIR DEVICE SCHEDULE" nil "Center") ("Air Devices" "MARK" "Mark" 12.0 "Center")
    ("Air Devices" "FLOW" "Flow [l/s]" 18.0 "Right")                    ("Air Devices" "NECK" "Neck size" nil "Center")
    ("Air Devices" "NOTES" "Remarks" 60.0 "Left")))

;; key and value, a text or a number
(setq globals '(("Office" . "Quarnel Mechanical") ("DuctDensity" . 7850.0) ("MaximumAspect" . 4.0)))

;; Filling the tables
;;
;; ts_table opens a table and makes it the current one, which ts_append adds to. It returns the record as it was stored,
;; with the number that the database gave it.

(defun add (names values / record)
  (setq record (must (ts_append (pairs names values)) (strcat "adding to " (ts_current_table))))
  (cdar record))

;; Pairs (name . number) of the layers, for the keys that use them.
(defun add-layers ()
  (ts_table "tblLayer")
  (mapcar '(lambda (layer)
             (cons (car layer) (add '("sName" "iColor" "sLinetype" "bPlot" "sLineweight") layer)))
          layers))

(defun add-systems (numbers / position system)
  (setq position 0)
  (foreach row systems
    (setq system nil)
    (if (car row)
      (progn
        (ts_table "tblLayerSystem")
        (setq position (1+ position)
              system   (add '("sDescription" "iSortOrder" "sPrefix" "bSolid" "supplyHatchOn")
                            (list (car row) position (cadr row) (caddr row) (if (= (car row) "Supply Air") -1 0))))))
    (ts_table "tblLayerKey")
    (foreach key (cdddr row)
      (add '("ixLayerSystem" "ixLayer" "sKey") (list system (cdr (assoc (cdr key) numbers)) (car key))))))

(defun add-others (/ position)
  (ts_table "tblTextStyle")
  (foreach style text-styles (add '("sKey" "sStyleName" "dHeight" "dScaleFactor") style))
  (ts_table "tblLabelGroup")
  (setq position -1)
  (foreach label labels
    (add '("sGroup" "sKey" "sLabel" "dWidth" "sJustification" "iSortOrder") (append label (list position)))
    (setq position (+ position (if (= position -1) 2 1))))
  (ts_table "tblGlobal")
  (foreach global globals
    (if (numberp (cdr global))
      (add '("sKey" "bNumeric" "dNumber") (list (car global) -1 (cdr global)))
      (add '("sKey" "bNumeric" "sText") (list (car global) 0 (cdr global))))))

;; Questions

(defun show-tables ()
  (title "Tables, their records and their indexes")
  (foreach name (must (ts_list_tables) "listing the tables")
    (ts_table name)
    (say-columns (list name (ts_count) (ts_list_indexes)) '(16 4 1)))
  (say (strcat "A layer must have a name: " (if (ts_field_required "tblLayer" "sName") "yes" "no")
               "; a lineweight: " (if (ts_field_required "tblLayer" "sLineweight") "yes" "no"))))

;; From the first record to the last, in the order of an index. Behind the last one ts_skip returns nil.
(defun walk-layers (/ layer)
  (title "Walking through the layers by name")
  (must (ts_table "tblLayer" "sName") "opening the layers by name")
  (setq layer (ts_top))
  (while layer
    (say-columns (mapcar '(lambda (name) (field name layer)) '("sName" "iColor" "sLinetype" "sLineweight" "bPlot"))
                 '(16 4 12 4 2))
    (setq layer (ts_skip))))

;; ts_seek finds the first record with the values of the current index.
(defun seek-records (/ system key)
  (title "Looking records up")
  (ts_table "tblLayer" "sName")
  (say (strcat "The colour of M-EQPM is " (itoa (field "iColor" (must (ts_seek "M-EQPM") "finding M-EQPM"))) "."))
  (say (strcat "A layer called NOWHERE is " (if (ts_seek "NOWHERE") "there." "not there.")))
  (ts_table "tblLayerSystem" "ixLayerSystem")
  (setq system (field "ixLayerSystem" (must (ts_bottom) "moving to the last system")))
  (ts_table "tblLayerKey" "isxLayerSystemKey")
  (setq key (must (ts_seek system "Tray") "finding a key by system and name"))
  (ts_table "tblLayer" "ixLayer")
  (say (strcat "The key Tray of the last system stands for " (field "sName" (ts_seek (field "ixLayer" key))) ".")))

;; ts_sql returns a list of records.
(defun ask (/ unused)
  (title "The layers of every system")
  (foreach record
           (ts_sql (strcat "select s.sDescription, k.sKey, l.sName"
                           " from (tblLayerKey as k inner join tblLayer as l on k.ixLayer = l.ixLayer)"
                           " left join tblLayerSystem as s on k.ixLayerSystem = s.ixLayerSystem"
                           " order by s.iSortOrder, k.sKey"))
    (say-columns (list (if (field "sDescription" record) (field "sDescription" record) "General")
                       (field "sKey" record) (field "sName" record))
                 '(12 14 1)))
  (title "Layers that several keys share")
  (foreach record
           (ts_sql (strcat "select l.sName, count(*) as iKeys from tblLayer as l, tblLayerKey as k"
                           " where k.ixLayer = l.ixLayer group by l.sName having count(*) > 1 order by 2 desc, 1"))
    (say-columns (list (field "sName" record) (field "iKeys" record)) '(16 1)))
  (title "Questions that are kept in the database")
  (must (ts_create_query "KeysOfLayer"
                         (strcat "parameters pLayer text;"
                                 " select k.sKey, k.ixLayerSystem"
                                 " from tblLayerKey as k inner join tblLayer as l on k.ixLayer = l.ixLayer"
                                 " where l.sName = pLayer order by k.ixLayerKey"))
        "creating a query")
  (foreach layer '("M-DUCT-CNTR" "G-ANNO" "X-OLD-DETAILS")
    (say (strcat "Keys that use " layer ": " (itoa (length (ts_query "KeysOfLayer" layer)))))))

;; Changes

(defun change (/ changed style)
  (title "Changing records")
  (setq changed (must (ts_command "update tblLayer set sLineweight = '25' where sName like 'M-DUCT-*'") "updating"))
  (say (strcat (itoa changed) " duct layers have the lineweight 0.25 mm now."))
  (ts_table "tblLayer" "sName")
  (must (ts_seek "E-TRAY") "finding E-TRAY")
  (say (strcat "E-TRAY has the colour " (itoa (field "iColor" (ts_replace '("iColor" . 32) '("sLineweight")))) " now."))
  ;; Numbers that other files refer to can be asked for: the database counts on until it reaches them.
  (ts_table "tblTextStyle")
  (setq style (ts_append_withindex 20 '("sKey" . "REVISION") '("dHeight" . 1.8)))
  (say (strcat "The text style " (field "sKey" style) " got the number " (itoa (field "ixTextStyle" style)) "."))
  (setq style (ts_append_withindex 7 '("sKey" . "LATE")))
  (say (strcat "Number 7 for another one: " style "."))
  (setq changed
    (must (ts_command "delete from tblLayer where ixLayer not in (select ixLayer from tblLayerKey)") "deleting"))
  (say (strcat (itoa changed) " layer that no key uses is deleted.")))

;; Compacting writes a new file without the room that deleted records left. Nobody may have the database open meanwhile.
(defun compact (file / copy)
  (title "Compacting")
  (setq copy (strcat file ".compacted"))
  (ts_fdelete copy)
  (ts_close_db)
  (say (strcat "The server says " (vl-princ-to-string (ts_compact file copy nil)) "."))
  (if (and (ts_fdelete file) (ts_fmove copy file))
    (say "The new file stands in the place of the old one."))
  (must (ts_connect file "r") "opening the compacted database")
  (say (strcat "It is open for " (if (ts_readonly) "reading" "writing") " and holds "
               (itoa (cdaar (ts_sql "select count(*) from tblLayer"))) " layers.")))

(defun standards (/ file)
  (setq file (strcat (getvar "DWGPREFIX") "standards.qn"))
  (ts_close_db)
  (ts_fdelete file)
  (must (ts_create_db file) (strcat "creating " file))
  (must (ts_connect file) "opening it")
  (must (standardsTables:create) "creating the tables")
  (add-systems (add-layers))
  (add-others)
  (show-tables)
  (walk-layers)
  (seek-records)
  (ask)
  (change)
  (compact file)
  (ts_close_db)
  (princ "\n\nThe standards are in standards.qn.\n")
  (princ))

(standards)
