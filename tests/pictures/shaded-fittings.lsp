;;; shaded from -0.6,-1,0.9
;; Every kind of fitting from the left and above.

(load "shared/fittings")
