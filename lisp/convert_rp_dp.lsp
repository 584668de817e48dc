;;; convert_rp_dp.lsp - converts the points of duct runs from the coordinates they are given in to the drawing's.
;;;
;;; The add-in calls (convert_rp_dp point code) for both points of a run when its convert flag is set; the code is the
;;; run's conversion code. Here a code stands for a local system of coordinates, such as a storey or a wing of a building:
;;;
;;;     (convert_rp_dp:define 2 '(0.0 0.0 144.0) 0.0)            ; second storey: 144 higher
;;;     (convert_rp_dp:define 7 '(600.0 0.0 0.0) (/ pi 6))       ; a wing that begins at (600 0), turned by 30 degrees
;;;
;;; Code 0 is the drawing itself, and a code that is not defined leaves points as they are.

;; (code origin angle) for every system: where its origin lies in the drawing, and by how much it is turned about Z,
;; counter-clockwise in radians. Every drawing has its own.
(if (not (boundp 'convert_rp_dp:systems)) (setq convert_rp_dp:systems nil))

;; Defines a system, or defines it anew. origin: list of three numbers. Returns the code.
(defun convert_rp_dp:define (code origin angle)
  (setq convert_rp_dp:systems
        (cons (list code (mapcar 'float origin) angle)
              (vl-remove-if '(lambda (system) (= (car system) code)) convert_rp_dp:systems)))
  code)

;; point: list of three reals. Returns one.
(defun convert_rp_dp (point code / system angle)
  (if (and (/= code 0) (setq system (assoc code convert_rp_dp:systems)))
    (progn
      (setq angle (caddr system))
      (mapcar '+
              (cadr system)
              (list (- (* (car point) (cos angle)) (* (cadr point) (sin angle)))
                    (+ (* (car point) (sin angle)) (* (cadr point) (cos angle)))
                    (caddr point))))
    point))

(princ)
