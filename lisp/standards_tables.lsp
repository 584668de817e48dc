;;; standards_tables.lsp - the tables of a standards database.
;;;
;;; (standardsTables:create) makes the six tables of the product, with their indexes, in the database that the drawing
;;; has open. T, or nil when one could not be made; the server has printed why.
;;;
;;; A table is a list of fields (name . type). REQUIRED fields must have a value, and take their DEFAULT when a program
;;; gives none. A COUNTER is numbered by the database. Names begin with what the field holds: ix a key, i a whole number,
;;; d a number, s a text, b yes or no.

;; Rows that were copied from a master database say from where.
(setq standardsTables:masterLink '(("ixMasterDatabase" . "LONG") ("iMasterDatabaseIndex" . "LONG")))

;; How one kind of duct is hatched.
(defun standardsTables:hatchFields (duct)
  (mapcar '(lambda (end type) (cons (strcat duct end) type))
          '("HatchOn" "HatchType" "HatchPattern" "HatchAngle" "HatchScale")
          '("YESNO REQUIRED DEFAULT NO" "TEXT(20) REQUIRED DEFAULT 'Predefined'" "TEXT(255) REQUIRED DEFAULT 'ANSI31'"
            "DOUBLE REQUIRED DEFAULT 0" "DOUBLE REQUIRED DEFAULT 1")))

(setq standardsTables:tables
  (list
    (list "tblLayer"
      (append
        '(("ixLayer" . "COUNTER") ("sName" . "TEXT(255) REQUIRED") ("bRGBColor" . "YESNO REQUIRED DEFAULT NO")
          ("iColor" . "LONG") ("iRed" . "LONG") ("iGreen" . "LONG") ("iBlue" . "LONG")
          ("sLinetype" . "TEXT(255) REQUIRED DEFAULT 'Continuous'") ("bPlot" . "YESNO REQUIRED DEFAULT YES")
          ("sLineweight" . "TEXT(10)") ("sPlotstyle" . "TEXT(255)"))
        standardsTables:masterLink))
    (list "tblLayerKey"
      (append
        '(("ixLayerKey" . "COUNTER") ("ixLayerSystem" . "LONG") ("ixLayer" . "LONG REQUIRED")
          ("sKey" . "TEXT(255) REQUIRED"))
        standardsTables:masterLink))
    (list "tblLayerSystem"
      (append
        '(("ixLayerSystem" . "COUNTER") ("sDescription" . "TEXT(255) REQUIRED")
          ("iSortOrder" . "LONG REQUIRED DEFAULT 0") ("bSolid" . "YESNO REQUIRED DEFAULT NO")
          ("sPrefix" . "TEXT(255) REQUIRED DEFAULT ''") ("sSuffix" . "TEXT(255) REQUIRED DEFAULT ''"))
        (apply 'append (mapcar 'standardsTables:hatchFields '("supply" "return" "exhaust" "outside")))
        '(("bHatchFlexDucts" . "YESNO REQUIRED DEFAULT NO") ("dHatchOverhang" . "DOUBLE REQUIRED DEFAULT 0"))
        standardsTables:masterLink))
    (list "tblTextStyle"
      (append
        '(("ixTextStyle" . "COUNTER") ("sKey" . "TEXT(255) REQUIRED") ("sStyleName" . "TEXT(255)")
          ("dHeight" . "DOUBLE") ("dScaleFactor" . "DOUBLE"))
        standardsTables:masterLink))
    (list "tblLabelGroup"
      '(("ixLabelGroup" . "COUNTER") ("sGroup" . "TEXT(255) REQUIRED") ("sKey" . "TEXT(255) REQUIRED")
        ("sLabel" . "TEXT(255) REQUIRED DEFAULT ''") ("dWidth" . "DOUBLE")
        ("sJustification" . "TEXT(20) REQUIRED DEFAULT 'Left'") ("bDisplay" . "YESNO REQUIRED DEFAULT YES")
        ("iSortOrder" . "LONG REQUIRED DEFAULT 0")))
    (list "tblGlobal"
      '(("ixGlobal" . "COUNTER") ("sKey" . "TEXT(255) REQUIRED") ("bNumeric" . "YESNO REQUIRED DEFAULT NO")
        ("sText" . "TEXT(255)") ("dNumber" . "DOUBLE")))))

;; (table index unique primary). An index has the name of its field, or names its fields in parentheses.
(setq standardsTables:indexes
  '(("tblLayer" "ixLayer" T T)             ("tblLayer" "sName" nil nil)
    ("tblLayerKey" "ixLayerKey" T T)       ("tblLayerKey" "sKey" nil nil)
    ("tblLayerKey" "isxLayerSystemKey(ixLayerSystem,sKey)" nil nil)
    ("tblLayerSystem" "ixLayerSystem" T T) ("tblLayerSystem" "iSortOrder" nil nil)
    ("tblTextStyle" "ixTextStyle" T T)     ("tblTextStyle" "sKey" T nil)
    ("tblLabelGroup" "ixLabelGroup" T T)
    ("tblGlobal" "ixGlobal" T T)           ("tblGlobal" "sKey" T nil)))

(defun standardsTables:create ()
  (and (vl-every '(lambda (table) (ts_create_table (car table) (cadr table))) standardsTables:tables)
       (vl-every '(lambda (index) (apply 'ts_create_index index)) standardsTables:indexes)))

(princ)
