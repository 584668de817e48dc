;;; One of every kind of fitting, in rows: straight ducts and transitions; elbows; tray, wyes and a takeoff; takeoffs and
;;; hangers; skins. Some ends are open.

(defun run (from to width height shape)
  (append from to (list 0 0.0 0.0 width height shape 0.0 0.0 "" "" 0 0.0)))
(setq number 0)
(defun place (x y z) (list (+ x (* 64.0 (rem number 6))) (+ y (* -62.0 (/ number 6))) z))
(defun draw (result) (if (null result) (princ (strcat "\nfitting " (itoa number) " is refused"))) (setq number (1+ number)))

;; Runs that meet in the middle of a place.
(defun from (x y z w h s) (run (place x y z) (place 0.0 0.0 0.0) w h s))
(defun to (x y z w h s) (run (place 0.0 0.0 0.0) (place x y z) w h s))
(defun in (w h s) (from -40.0 0.0 0.0 w h s))
(defun on (w h s) (to 40.0 0.0 0.0 w h s))
(defun left (w h s) (to 0.0 40.0 0.0 w h s))
(defun right (w h s) (to 0.0 -40.0 0.0 w h s))
(defun up (w h s) (to 0.0 0.0 40.0 w h s))
(defun half-left (w h s) (to 30.0 30.0 0.0 w h s))
(defun half-right (w h s) (to 30.0 -30.0 0.0 w h s))

(draw (qn_qn-drawTripleCenter nil 0 (in 20.0 10.0 "RC")))
(draw (qn_qn-drawTripleCenter nil 7 (in 24.0 10.0 "OO")))
(draw (qn_qn-drawTripleCenter nil 3 (in 14.0 14.0 "RD")))
(draw (qn_qn-drawTripleTransition nil 0 (in 20.0 10.0 "RC") (on 10.0 16.0 "RC")))
(draw (qn_qn-drawTripleTransition nil 0 (in 24.0 12.0 "RC") (on 12.0 12.0 "RD")))
(draw (qn_qn-drawTripleTransition nil 0 (in 20.0 20.0 "RD") (on 30.0 8.0 "OO")))

(draw (qn_qn-drawTripleElbow nil 0 nil 20.0 (in 14.0 10.0 "RC") (left 14.0 10.0 "RC")))
(draw (qn_qn-drawTripleElbow nil 0 nil 20.0 (in 14.0 14.0 "RD") (left 14.0 14.0 "RD")))
(draw (qn_qn-drawTripleElbow nil 0 nil 18.0 (in 14.0 10.0 "RC") (up 8.0 8.0 "RD")))
(draw (qn_qn-drawTripleElbow nil 3 nil 18.0 (in 14.0 10.0 "RC") (to 25.0 25.0 20.0 14.0 10.0 "RC")))
(draw (qn_qn-drawTripleElbow nil 0 T 0.0 (in 14.0 10.0 "RC") (left 20.0 10.0 "RC")))
(draw (qn_qn-drawTripleElbow nil 0 T 0.0 (in 14.0 14.0 "RD") (half-left 14.0 14.0 "RD")))

(draw (qn_qn-drawTripleElbow nil 0 "CABLETRAY" 18.0 (in 18.0 4.0 "RC") (left 18.0 4.0 "RC")))
(draw (qn_qn-drawTripleWye nil 0 nil 0.0 (in 20.0 10.0 "RC") (half-left 14.0 10.0 "RC") (half-right 14.0 10.0 "RC")))
(draw (qn_qn-drawTripleWye nil 0 nil 0.0 (in 16.0 16.0 "RD") (half-left 10.0 10.0 "RD") (half-right 12.0 12.0 "RC")))
(draw (qn_qn-drawTripleWye nil 0 nil 0.0 (in 20.0 10.0 "RC") (half-left 14.0 10.0 "RC") (on 20.0 10.0 "RC")))
(draw (qn_qn-drawTripleWye nil 0 nil 0.0 (in 20.0 10.0 "RC") (left 14.0 10.0 "RC") (right 14.0 10.0 "RC")))
(draw (qn_qn-drawTripleTakeoff nil 0 nil 0.0 (in 20.0 14.0 "RC") (on 14.0 14.0 "RC") (left 10.0 10.0 "RD")))

(draw (qn_qn-drawTripleTakeoff nil 0 nil 0.0 (in 20.0 20.0 "RD") (on 20.0 20.0 "RD") (half-left 10.0 10.0 "RD")
                               (right 14.0 10.0 "RC")))
(draw (qn_qn-drawTripleTakeoff nil 0 nil 0.0 (in 20.0 14.0 "RC") (on 20.0 14.0 "RC") (up 10.0 10.0 "RD")))
(draw (qn_qn-drawHanger nil (place 0.0 0.0 0.0) 0.5 20.0 10.0 T 1.0 2.0 30.0 0))
(draw (qn_qn-drawHanger nil (place 0.0 0.0 0.0) 0.5 20.0 10.0 T 1.0 2.0 -30.0 0))
(draw (qn_qn-drawHanger T (place 0.0 0.0 0.0) 0.5 20.0 20.0 nil 2.0 1.0 40.0 0))
(draw (qn_qn-drawHanger T (place 0.0 0.0 0.0) 0.5 20.0 12.0 T 2.0 1.0 -30.0 0))

(draw (qn_qn-drawTripleSkin 1.0 (list (place 0.0 0.0 0.0) (place 30.0 0.0 0.0) (place 30.0 20.0 0.0) (place 0.0 20.0 0.0))))
(draw (qn_qn-drawTripleSkin 1.0 (list (place 0.0 0.0 0.0) (place 30.0 0.0 0.0) (place 30.0 20.0 10.0) (place 0.0 20.0 0.0))))
