;;; layer_systems.lsp - what the Layers dialog leaves to the product when it works on a layer system: the labels of the
;;; system's pipes, its options, and whether objects of the drawing use it. layer_exchange.lsp has the exchange with
;;; spreadsheets.
;;;
;;; The dialog works on a connection of its own. The functions here use that of the drawing: where it has another
;;; database, or none, it is opened on the dialog's one for the length of the call, and gets its own back afterwards with
;;; its tables closed.
;;;
;;; Systems are numbers, their ixLayerSystem; -1 is the general system, to which the keys without a system belong.

;; Access to the database

;; The path of the database that the dialog works on; nil before the first one. Functions that are not told a path use it.
(if (not (boundp 'layerSystems:database)) (setq layerSystems:database nil))

;; Called before the keys are shown, once for each. Electrical programs find the database by it too.
(defun util-layerKeySetElecGlobals (path) (setq layerSystems:database path))

(defun layerSystems:isSamePath (one other)
  (= (strcase (vl-string-translate "/" "\\" one)) (strcase (vl-string-translate "/" "\\" other))))

;; Whether the drawing has the database open for writing.
(defun layerSystems:isOpen (path)
  (and (ts_mdb) (not (ts_readonly)) (layerSystems:isSamePath (ts_mdb) path)))

;; Calls a function on the database. Its result, or nil when the database cannot be opened or the function ended in an
;; error, which the drafter is told. nil without a path.
(defun layerSystems:on (path function arguments / own mode result)
  (cond
    ((null path) nil)
    ((layerSystems:isOpen path) (setq result (vl-catch-all-apply function arguments)))
    (T
     (setq own (ts_mdb) mode (if (ts_readonly) "r" "w"))
     (if (ts_connect path "w")
       (setq result (vl-catch-all-apply function arguments))
       (alert (strcat path "\ncannot be opened.")))
     (if own (ts_connect own mode) (ts_close_db))))
  (if (vl-catch-all-error-p result)
    (alert (vl-catch-all-error-message result))
    result))

;; A text, or nil, as it stands in a statement.
(defun layerSystems:quoted (text / parts position)
  (setq position 0)
  (while (and text (setq position (vl-string-search "'" text position)))
    (setq text (strcat (substr text 1 position) "'" (substr text (1+ position))) position (+ position 2)))
  (if text (strcat "'" text "'") "null"))

;; The value of the first field of the only record; nil without one.
(defun layerSystems:ask (statement) (cdaar (ts_sql statement)))

(defun layerSystems:field (name record) (cdr (assoc name record)))

;; The condition on the layer keys of a system.
(defun layerSystems:keysOf (system)
  (if (= system -1) "ixLayerSystem is null" (strcat "ixLayerSystem = " (itoa system))))

(defun layerSystems:exists (system)
  (= 1 (layerSystems:ask (strcat "select count(*) from tblLayerSystem where ixLayerSystem = " (itoa system)))))

;; The name that the drafter knows; nil when there is no such system.
(defun layerSystems:name (system)
  (if (= system -1)
    "General"
    (layerSystems:ask (strcat "select sDescription from tblLayerSystem where ixLayerSystem = " (itoa system)))))

;; Labels of pipes
;;
;; A system labels its pipes with a label group of its own.

(defun layerSystems:labelGroup (system) (strcat "Pipe Labels " (itoa system)))
(defun layerSystems:labelCondition (system)
  (strcat " from tblLabelGroup where sGroup = " (layerSystems:quoted (layerSystems:labelGroup system))))

;; Numbers of systems mean something in their own database only, so what is not as the dialog leaves it is left alone.
(defun layerSystems:copyLabels (new source)
  (if (and (layerSystems:exists new) (layerSystems:exists source)
           (= 0 (layerSystems:ask (strcat "select count(*)" (layerSystems:labelCondition new)))))
    (ts_command (strcat "insert into tblLabelGroup(sGroup, sKey, sLabel, dWidth, sJustification, bDisplay, iSortOrder)"
                        " select " (layerSystems:quoted (layerSystems:labelGroup new))
                        ", sKey, sLabel, dWidth, sJustification, bDisplay, iSortOrder"
                        (layerSystems:labelCondition source)))))

;; The dialog has deleted the system's keys when it asks for this.
(defun layerSystems:deleteLabels (system)
  (if (and (layerSystems:exists system)
           (= 0 (layerSystems:ask (strcat "select count(*) from tblLayerKey where " (layerSystems:keysOf system)))))
    (ts_command (strcat "delete" (layerSystems:labelCondition system)))))

;; A new system starts with copies of the labels of the system that it was made from. The number of labels, or nil.
(defun util-createPipeLabels (new source)
  (layerSystems:on (layerSystems:dialogDatabase) 'layerSystems:copyLabels (list new source)))

;; The number of labels that were deleted, or nil.
(defun util-deletePipeLabels (system)
  (layerSystems:on (layerSystems:dialogDatabase) 'layerSystems:deleteLabels (list system)))

(defun layerSystems:dialogDatabase () (if layerSystems:database layerSystems:database (ts_mdb)))

;; Objects of the drawing

;; A layer name as a pattern that matches nothing else.
(defun layerSystems:pattern (name)
  (apply 'strcat
         (mapcar '(lambda (letter) (if (wcmatch letter "[`#`@`.`*`?`~`[`]`-`,``]") (strcat "`" letter) letter))
                 (mapcar 'chr (vl-string->list name)))))

(defun layerSystems:countObjects (layer / objects)
  (setq objects (ssget "_X" (list (cons 8 (layerSystems:pattern layer)))))
  (if objects (sslength objects) 0))

;; The layers that a system has for itself: objects on the others may belong to any system.
(defun layerSystems:ownLayers (system / key)
  (setq key (itoa system))
  (mapcar '(lambda (record) (layerSystems:field "sName" record))
          (ts_sql (strcat "select distinct l.sName from tblLayer as l, tblLayerKey as k where k.ixLayer = l.ixLayer"
                          " and k.ixLayerSystem = " key
                          " and l.ixLayer not in (select ixLayer from tblLayerKey where ixLayerSystem <> " key
                          " or ixLayerSystem is null) order by l.sName"))))

;; Why a system of the drawing's own database must stay: a text when objects of the drawing lie on its layers, else nil.
(defun util-checkObjectsforLayersystem (system / count total used)
  (setq total 0)
  (foreach layer (if (ts_mdb) (layerSystems:ownLayers system))
    (if (< 0 (setq count (layerSystems:countObjects layer)))
      (setq used (cons layer used) total (+ total count))))
  (if used
    (strcat "The layer system cannot be deleted: " (itoa total) (if (= total 1) " object" " objects")
            " of the drawing " (if (= total 1) "is" "are") " on its layers, such as " (last used) ".")))

;; Options

(defun layerSystems:hatchText (record duct)
  (if (= -1 (layerSystems:field (strcat duct "HatchOn") record))
    (strcat "\nHatch of " duct " ducts: " (layerSystems:field (strcat duct "HatchPattern") record))
    ""))

(defun layerSystems:textOrNone (text) (if (member text '(nil "")) "none" text))

(defun layerSystems:showOptions (system / record)
  (setq record (car (ts_sql (strcat "select * from tblLayerSystem where ixLayerSystem = " (itoa system)))))
  (if record
    (alert (strcat (layerSystems:field "sDescription" record)
                   "\nLabel prefix: " (layerSystems:textOrNone (layerSystems:field "sPrefix" record))
                   "\nLabel suffix: " (layerSystems:textOrNone (layerSystems:field "sSuffix" record))
                   "\nDrawn solid: " (if (= -1 (layerSystems:field "bSolid" record)) "yes" "no")
                   (apply 'strcat
                          (mapcar '(lambda (duct) (layerSystems:hatchText record duct))
                                  '("supply" "return" "exhaust" "outside")))))
    (alert (strcat "There is no layer system " (itoa system) "."))))

;; Edit System: shows the options. The command line cannot ask for others while the dialog is open; a product with
;; option dialogs opens the one of the system's discipline here.
(defun util-layersystemoptions (system path)
  (layerSystems:on path 'layerSystems:showOptions (list system)))

(princ)
