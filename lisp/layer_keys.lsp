;;; layer_keys.lsp - how the Layers dialog shows the keys of a layer system.
;;;
;;; A key is the name by which programs ask for a layer: "SupplyDuct", "Pipe10", "_Grid". The drafter sees words
;;; instead, in an order that counts numbers as such, and nothing of the keys that begin with an underscore: those are
;;; for programs alone.
;;;
;;; The dialog calls each of these functions for every key.

;; T for the keys that the drafter sees.
(defun util-showLayerKey (key)
  (and (/= key "") (/= (substr key 1 1) "_")))

(defun layerKeys:isUpper (letter) (/= (strcase letter T) letter))
(defun layerKeys:isLower (letter) (/= (strcase letter) letter))
(defun layerKeys:isDigit (letter) (wcmatch letter "#"))

;; The letters of a text, as texts.
(defun layerKeys:letters (text) (mapcar 'chr (vl-string->list text)))

;; Whether a word begins with a letter: a capital after a small letter or a number, the last capital of several when a
;; small letter follows, and the first digit of a number behind letters.
(defun layerKeys:isWordStart (before letter after)
  (cond
    ((layerKeys:isUpper letter)
     (or (layerKeys:isLower before) (layerKeys:isDigit before)
         (and (layerKeys:isUpper before) (layerKeys:isLower after))))
    ((layerKeys:isDigit letter) (or (layerKeys:isLower before) (layerKeys:isUpper before)))))

;; The key in words: "HVACDuct_Text2" is "HVAC Duct Text 2".
(defun util-LayerkeyRename (key / letters before words)
  (setq letters (layerKeys:letters (vl-string-translate "_" " " key)) before " " words "")
  (while letters
    (setq words   (strcat words
                          (if (layerKeys:isWordStart before (car letters) (if (cdr letters) (cadr letters) " ")) " " "")
                          (car letters))
          before  (car letters)
          letters (cdr letters)))
  (vl-string-trim " " words))

;; A number with zeros in front, so that it stands behind smaller ones when texts are compared.
(defun layerKeys:padded (digits)
  (while (< (strlen digits) 8) (setq digits (strcat "0" digits)))
  digits)

;; The text that the keys are sorted by: case does not count, and "Pipe 2" stands before "Pipe 10".
(defun util-createLayerKeySortText (key / digits text)
  (setq digits "" text "")
  (foreach letter (append (layerKeys:letters (strcase (util-LayerkeyRename key))) '(""))
    (if (layerKeys:isDigit letter)
      (setq digits (strcat digits letter))
      (setq text   (strcat text (if (= digits "") "" (layerKeys:padded digits)) letter)
            digits "")))
  text)

(princ)
