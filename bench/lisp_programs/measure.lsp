; Calls `measured` of the program loaded before until half a second has passed; prints its value and the
; milliseconds of one call.
(defun measure (/ start count elapsed value)
  (setq value (measured) count 1 elapsed 0)
  (while (< elapsed 500)
    (setq count (* count 2) start (getvar "MILLISECS"))
    (repeat count (measured))
    (setq elapsed (- (getvar "MILLISECS") start)))
  (princ (strcat "\nmeasured " (itoa value) " " (rtos (/ (float elapsed) count) 2 4) "\n")))
(measure)
