;;; What database work costs from LISP: a large result against SQLite alone building the same list in this process, and
;;; the steps of a cursor. bench/database_calls.sh runs it, with the server in its own process and in this one.

(setq file "tessary_bench_calls.qn")

(defun seconds (work / start)
  (setq start (bench-clock))
  (work)
  (- (bench-clock) start))

(defun best (work / least)
  (setq least (seconds work))
  (repeat 2 (setq least (min least (seconds work))))
  least)

(defun line (topic text) (princ (strcat "\n" topic ": " text)))

(defun need (value what)
  (if (null value)
    (progn (princ (strcat "\n" what " failed: " (ts_lastError))) (exit)))
  value)

(ts_fdelete file)
(need (ts_create_db file) "creating the database")
(need (ts_connect file) "connecting")
(need (ts_command "create table digits (n long)") "creating a table")
(foreach digit '(0 1 2 3 4 5 6 7 8 9) (ts_command (strcat "insert into digits values (" (itoa digit) ")")))
(need (ts_command "create table rows (ixRow counter primary key, iNumber long, sName text(50), dValue double, bFlag yesno, iOther long, sOther text(50), dOther double, sThird text(80), iLast long)") "creating a table")
(need (ts_command "insert into rows (iNumber, sName, dValue, bFlag, iOther, sOther, dOther, sThird, iLast) select a.n + 10 * b.n + 100 * c.n + 1000 * d.n + 10000 * e.n, \"Layer \" & a.n, a.n * 0.25, True, 7, \"Continuous\", 1.5, \"a longer description of the layer\", 9 from digits a, digits b, digits c, digits d, digits e") "filling")

(setq ours (best (lambda () (need (setq result (ts_sql-nil "select * from rows")) "the query")))
      ours-count (length result)
      result nil
      bare (best (lambda () (need (setq result (bench-bare-records file "select * from \"rows\"")) "the bare query")))
      bare-count (length result)
      result nil)
(line "ts_sql, 100,000 records of 10 fields, over SQLite alone building the same list"
      (strcat "ratio " (rtos (/ ours bare) 2 2) " (" (rtos (* 1000 ours) 2 0) " ms, " (itoa ours-count) " records; SQLite "
              (rtos (* 1000 bare) 2 0) " ms, " (itoa bare-count) " records; at most 4 wanted)"))

;; A call without work measures what crossing to the server costs; each function also asks two questions about the
;; connection's health before it.
(setq steps 2000)
(need (ts_table "rows") "opening the table")
(ts_top)
(setq step (/ (best (lambda () (repeat steps (ts_skip)))) steps)
      name (/ (best (lambda () (repeat steps (ts_current_table)))) steps))
(line "cursor step" (strcat (rtos (* 1e6 step) 2 1) " microseconds, of it crossing to the server and back, three times: "
                            (rtos (* 1e6 name) 2 1) " microseconds (" (rtos (* 100 (/ name step)) 2 0) " per cent)"))
(ts_close_db)
(ts_fdelete file)
(princ)
