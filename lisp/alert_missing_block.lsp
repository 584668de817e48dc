;;; alert_missing_block.lsp - tells the drafter which block a drawing lacks.
;;;
;;; The add-in calls (qnBlock-alertMissing name) when a program asks for a block that is neither in the drawing nor, as
;;; name.dwg, in a folder of the search path. Each name is told once in a drawing, so that a program that places hundreds
;;; of leaders says it in one line.

;; The names that were told. Every drawing has its own.
(if (not (boundp 'qnBlock-alertMissing:told)) (setq qnBlock-alertMissing:told nil))

;; What is returned is not looked at.
(defun qnBlock-alertMissing (name)
  (if (not (member (strcase name) qnBlock-alertMissing:told))
    (progn
      (setq qnBlock-alertMissing:told (cons (strcase name) qnBlock-alertMissing:told))
      (princ (strcat "\nThe block \"" name "\" is missing: the drawing does not have it, and there is no " name
                     ".dwg on the search path."))))
  nil)

(princ)
