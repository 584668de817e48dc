;;; layer_exchange.lsp - the layers of a layer system as a text file for spreadsheets.
;;;
;;; Export writes "Layers NAME.csv" beside the database, with a row for each key of the system: the key, its layer, and
;;; what the layer looks like. Import reads the file back: it gives the keys the layers that the file names, changes
;;; layers that look otherwise and adds those that are missing. It checks the whole file first; a file with a mistake
;;; changes nothing. No key or layer is ever deleted.
;;;
;;; Columns: colors are numbers from 1 to 255, Plot is yes or no, lineweights are hundredths of a millimetre. Empty are
;;; the color of a layer that has none, the default lineweight, and the plot style of a layer without one. Fields are
;;; separated as spreadsheets like to do it, by commas (which export writes), semicolons or tabs; the text is UTF-8.

(load "layer_systems")

(setq layerExchange:header '("Layer Key" "Layer Name" "Color" "Linetype" "Plot" "Lineweight" "Plot Style"))

;; Lines of fields

(defun layerExchange:quoted (text / doubled)
  (setq doubled "")
  (foreach code (vl-string->list text) (setq doubled (strcat doubled (if (= code 34) "\"\"" (chr code)))))
  (strcat "\"" doubled "\""))

(defun layerExchange:line (fields)
  (substr (apply 'strcat (mapcar '(lambda (text) (strcat "," (layerExchange:quoted text))) fields)) 2))

;; The fields of a line, without blanks around them. A quoted field may hold separators, and quotes written twice.
(defun layerExchange:fields (line separator / codes code fields text quoted)
  (setq codes (vl-string->list line) text "")
  (while codes
    (setq code (car codes) codes (cdr codes))
    (cond
      ((and (= code 34) quoted (equal (car codes) 34)) (setq text (strcat text "\"") codes (cdr codes)))
      ((= code 34) (setq quoted (not quoted)))
      ((and (= code separator) (not quoted)) (setq fields (cons text fields) text ""))
      (T (setq text (strcat text (chr code))))))
  (mapcar '(lambda (field) (vl-string-trim " \r" field)) (reverse (cons text fields))))

;; The code of the separator between the words of the first line.
(defun layerExchange:separator (line)
  (cond ((vl-string-position 59 line) 59) ((vl-string-position 9 line) 9) (T 44)))

;; All rows as (line field ...), the header too, with the number of the line that each is in; without those of empty
;; fields, which spreadsheets leave at the end. nil when the file cannot be read. A text with a line break makes two rows,
;; which are too short then.
(defun layerExchange:read (file / handle line number separator rows fields)
  (if (setq handle (open file "r"))
    (progn
      (setq number 0)
      (while (setq line (read-line handle))
        (setq number (1+ number))
        (if (null separator) (setq separator (layerExchange:separator line)))
        (setq fields (layerExchange:fields line separator))
        (if (vl-some '(lambda (field) (/= field "")) fields) (setq rows (cons (cons number fields) rows))))
      (close handle)
      (reverse rows))))

;; Export

;; The file of a system, beside its database. Characters that no file name may have become underscores.
(defun layerExchange:file (system path / folder)
  (setq folder (vl-filename-directory path))
  (strcat (if (= folder "") "" (strcat (vl-string-right-trim "\\/" folder) "\\"))
          "Layers " (vl-string-translate "\\/:*?\"<>|\t\r\n" "____________" (layerSystems:name system)) ".csv"))

(defun layerExchange:text (value) (cond ((null value) "") ((= (type value) 'INT) (itoa value)) (T value)))

;; What a layer looks like, as texts: the columns behind its name.
(defun layerExchange:look (record)
  (list (layerExchange:text (layerSystems:field "iColor" record))
        (layerExchange:text (layerSystems:field "sLinetype" record))
        (if (= -1 (layerSystems:field "bPlot" record)) "yes" "no")
        (layerExchange:text (layerSystems:field "sLineweight" record))
        (layerExchange:text (layerSystems:field "sPlotstyle" record))))

(defun layerExchange:rows (system)
  (mapcar '(lambda (record)
             (append (list (layerSystems:field "sKey" record) (layerSystems:field "sName" record))
                     (layerExchange:look record)))
          (ts_sql (strcat "select k.sKey, l.sName, l.iColor, l.sLinetype, l.bPlot, l.sLineweight, l.sPlotstyle"
                          " from tblLayerKey as k inner join tblLayer as l on k.ixLayer = l.ixLayer where k."
                          (layerSystems:keysOf system) " order by k.sKey"))))

;; Writes the file anew, under another name until it is whole. T when it stands there.
(defun layerExchange:write (file rows / written handle)
  (setq written (strcat file ".new"))
  (if (setq handle (open written "w"))
    (progn
      ;; The mark by which spreadsheets know UTF-8.
      (princ "\U+FEFF" handle)
      (foreach row (cons layerExchange:header rows) (write-line (layerExchange:line row) handle))
      (close handle)
      (vl-file-delete file)
      (or (vl-file-rename written file) (progn (vl-file-delete written) nil)))))

(defun layerExchange:export (system path / file)
  (cond
    ((null (layerSystems:name system)) (alert (strcat "There is no layer system " (itoa system) ".")))
    ((layerExchange:write (setq file (layerExchange:file system path)) (layerExchange:rows system))
     (alert (strcat "The layers are in\n" file)))
    (T (alert (strcat file "\ncannot be written: it is open in another program, or its folder is read-only."))))
  nil)

;; 16 bits: what the dialog passes.
(defun util-exportLayerSystem-noName (system path) (layerSystems:on path 'layerExchange:export (list system path)))

;; Import: the checks

(defun layerExchange:isNumber (text least most)
  (and (/= text "") (< (strlen text) 4) (wcmatch text "~*[~0-9]*") (<= least (atoi text) most)))

;; The characters that the Layers dialog refuses too.
(defun layerExchange:isLayerName (text)
  (not (vl-some '(lambda (code) (vl-position code (vl-string->list "<>/\\'\":;?*|,="))) (vl-string->list text))))

;; What is wrong with a row by itself; nil when nothing is. A layer that stays as the database has it is always right.
;; layers: those of the database.
(defun layerExchange:mistake (fields layers / layer)
  (setq layer (if (cdr fields) (assoc (strcase (nth 1 fields)) layers)))
  (cond
    ((/= (length fields) (length layerExchange:header))
     (strcat (itoa (length layerExchange:header)) " columns are needed, there are " (itoa (length fields)) "."))
    ((and layer (equal (caddr layer) (cddr fields))) nil)
    ((vl-some '(lambda (field) (< 255 (strlen field))) fields) "a text has more than 255 characters.")
    ((= (nth 1 fields) "") "the name of the layer is missing.")
    ((and (null layer) (not (layerExchange:isLayerName (nth 1 fields))))
     (strcat (nth 1 fields) " cannot be the name of a layer."))
    ((not (or (= (nth 2 fields) "") (layerExchange:isNumber (nth 2 fields) 1 255)))
     (strcat "the color " (nth 2 fields) " is not a number from 1 to 255."))
    ((= (nth 3 fields) "") "the linetype is missing.")
    ((not (member (nth 4 fields) '("yes" "no"))) "the column Plot does not say yes or no.")
    ((not (or (= (nth 5 fields) "") (layerExchange:isNumber (nth 5 fields) 0 211)))
     (strcat "the lineweight " (nth 5 fields) " is not a number from 0 to 211."))))

;; What does not go with the system or with the rows before: their keys, and their layers (NAME ixLayer look).
(defun layerExchange:conflict (fields system-keys keys layers / layer)
  (setq layer (assoc (strcase (nth 1 fields)) layers))
  (cond
    ((= (car fields) "") "the key is missing.")
    ((null (assoc (strcase (car fields)) system-keys)) (strcat "the layer system has no key " (car fields) "."))
    ((member (strcase (car fields)) keys) (strcat "the key " (car fields) " has two rows."))
    ((and layer (not (equal (caddr layer) (cddr fields))))
     (strcat "the layer " (nth 1 fields) " looks otherwise in a row before."))))

;; The first problem of a file with the line that it stands in; nil when the file is good.
(defun layerExchange:problem (rows system-keys layers / fields keys named problem)
  (if (not (equal (mapcar 'strcase (cdar rows)) (mapcar 'strcase layerExchange:header)))
    (strcat "the first row must be: " (layerExchange:line layerExchange:header))
    (vl-some '(lambda (row)
                (setq fields  (cdr row)
                      problem (cond ((layerExchange:mistake fields layers))
                                    ((layerExchange:conflict fields system-keys keys named)))
                      keys    (cons (strcase (car fields)) keys))
                (if (cdr fields) (setq named (cons (list (strcase (cadr fields)) nil (cddr fields)) named)))
                (if problem (strcat "line " (itoa (car row)) ": " problem)))
             (cdr rows))))

;; Import: the changes

;; (KEY ixLayerKey ixLayer) of the system's keys, names in upper case.
(defun layerExchange:keys (system)
  (mapcar '(lambda (record) (cons (strcase (cdar record)) (mapcar 'cdr (cdr record))))
          (ts_sql (strcat "select sKey, ixLayerKey, ixLayer from tblLayerKey where " (layerSystems:keysOf system)))))

;; (NAME ixLayer look) of all layers.
(defun layerExchange:layers ()
  (mapcar '(lambda (record)
             (list (strcase (layerSystems:field "sName" record)) (layerSystems:field "ixLayer" record)
                   (layerExchange:look record)))
          (ts_sql "select ixLayer, sName, iColor, sLinetype, bPlot, sLineweight, sPlotstyle from tblLayer")))

;; The fields of a look with their values as they stand in a statement.
(defun layerExchange:values (look)
  (mapcar 'cons
          '("iColor" "sLinetype" "bPlot" "sLineweight" "sPlotstyle")
          (list (if (= (nth 0 look) "") "null" (nth 0 look))
                (layerSystems:quoted (nth 1 look))
                (if (= (nth 2 look) "yes") "yes" "no")
                (layerSystems:quoted (if (/= (nth 3 look) "") (nth 3 look)))
                (layerSystems:quoted (if (/= (nth 4 look) "") (nth 4 look))))))

(defun layerExchange:joined (texts)
  (substr (apply 'strcat (mapcar '(lambda (text) (strcat ", " text)) texts)) 3))

;; Ends the import when a statement fails; the server has printed why.
(defun layerExchange:change (statement)
  (if (ts_command statement)
    (setq changes (1+ changes))
    (vl-exit-with-error "The database could not be changed.")))

;; The number of the layer, which is added when it is missing and changed when it looks otherwise.
(defun layerExchange:importLayer (name look layers / layer values)
  (setq layer (assoc (strcase name) layers) values (layerExchange:values look))
  (cond
    ((null layer)
     (layerExchange:change (strcat "insert into tblLayer(sName, " (layerExchange:joined (mapcar 'car values))
                                   ") values (" (layerSystems:quoted name) ", "
                                   (layerExchange:joined (mapcar 'cdr values)) ")"))
     (layerSystems:ask (strcat "select max(ixLayer) from tblLayer where sName = " (layerSystems:quoted name))))
    ((equal look (caddr layer)) (cadr layer))
    (T
     (layerExchange:change
       (strcat "update tblLayer set "
               (layerExchange:joined (mapcar '(lambda (value) (strcat (car value) " = " (cdr value))) values))
               ;; A color by its number takes the place of one by red, green and blue.
               (if (= (car look) (car (caddr layer))) "" ", bRGBColor = no")
               " where ixLayer = " (itoa (cadr layer))))
     (cadr layer))))

(defun layerExchange:importRow (fields system-keys layers / key layer)
  (setq key   (assoc (strcase (car fields)) system-keys)
        layer (layerExchange:importLayer (cadr fields) (cddr fields) layers))
  (if (/= layer (caddr key))
    (layerExchange:change (strcat "update tblLayerKey set ixLayer = " (itoa layer)
                                  " where ixLayerKey = " (itoa (cadr key)))))
  (if (null (assoc (strcase (cadr fields)) layers))
    (list (strcase (cadr fields)) layer (cddr fields))))

;; The rows with Plot as the look of a layer has it.
(defun layerExchange:uniform (rows)
  (mapcar '(lambda (row / place)
             (setq place -1)
             (mapcar '(lambda (field) (setq place (1+ place)) (if (= place 5) (strcase field T) field)) row))
          rows))

;; T when the database changed.
(defun layerExchange:import (system path / file rows system-keys layers changes result added)
  (setq changes 0)
  (cond
    ((null (layerSystems:name system)) (alert (strcat "There is no layer system " (itoa system) ".")))
    ((null (setq rows (layerExchange:uniform (layerExchange:read (setq file (layerExchange:file system path))))))
     (alert (strcat "There is no file\n" file "\nor it is empty. Export writes one.")))
    ((setq system-keys (layerExchange:keys system)
           layers      (layerExchange:layers)
           result      (layerExchange:problem rows system-keys layers))
     (alert (strcat file "\n" result "\nNothing was changed.")))
    (T
     (setq result (vl-catch-all-apply
                    '(lambda ()
                       (foreach row (cdr rows)
                         (if (setq added (layerExchange:importRow (cdr row) system-keys layers))
                           (setq layers (cons added layers)))))))
     (alert (cond ((vl-catch-all-error-p result) (vl-catch-all-error-message result))
                  ((= changes 0) "The layers are as in the file already.")
                  (T (strcat (itoa changes) (if (= changes 1) " change was" " changes were") " made."))))))
  (< 0 changes))

(defun util-importLayerSystem-noName (system path) (layerSystems:on path 'layerExchange:import (list system path)))

(princ)
