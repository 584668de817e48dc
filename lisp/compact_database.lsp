;;; compact_database.lsp - repairs and compacts a database.
;;;
;;; (compactDatabase path nil "Repair") writes a compacted copy of the database, keeps the file as it was under another
;;; name and puts the copy in its place. T, or nil when the database could not be repaired; it is then where it was.
;;; The database must not be open.
;;;
;;; ts_connect calls this function when the server finds that a database is damaged, and opens the database again when
;;; it returns T. Load this file before, or the database stays as it is.

;; The files that hold a database: the database itself and, after a crash, what the server still needed to finish or
;; undo the last change. They belong together: a journal beside another database would damage that one.
(setq compactDatabase:endings '("" "-journal" "-wal" "-shm"))

(defun compactDatabase:exists (path) (if (ts_fdir path) T))

;; path, or path with a number, whichever nothing is called yet.
(defun compactDatabase:freeName (path / number name)
  (setq number 1 name path)
  (while (vl-some '(lambda (ending) (compactDatabase:exists (strcat name ending))) compactDatabase:endings)
    (setq number (1+ number) name (strcat path (itoa number))))
  name)

;; Moves the database from one name to another, all its files or none. T when it stands there.
(defun compactDatabase:move (from to / moved failed)
  (foreach ending compactDatabase:endings
    (if (and (not failed) (compactDatabase:exists (strcat from ending)))
      (if (ts_fmove (strcat from ending) (strcat to ending))
        (setq moved (cons ending moved))
        (setq failed T))))
  (if failed
    (foreach ending moved (ts_fmove (strcat to ending) (strcat from ending))))
  (and moved (not failed)))

;; Writes a compacted copy. Its name, or nil when there is none. The server answers "OK", or with its error number after
;; a message: 3049 says that the copy was written but lacks what could not be read.
(defun compactDatabase:copy (file / copy)
  (setq copy (compactDatabase:freeName (strcat file ".compacted")))
  (if (and (member (ts_compact file copy nil) '("OK" 3049)) (compactDatabase:exists copy))
    copy
    (progn (ts_fdelete copy) nil)))

;; Puts the copy in the place of the file. The new name of the file, or nil when nothing has changed.
(defun compactDatabase:exchange (file copy / kept)
  (setq kept (compactDatabase:freeName (strcat file ".damaged")))
  (cond
    ((not (compactDatabase:move file kept)) nil)
    ((compactDatabase:move copy file) kept)
    (T (compactDatabase:move kept file) nil)))

;; option: not used, nil. reason: stands before the messages, such as "Repair".
(defun compactDatabase (path option reason / file copy kept say)
  (defun say (text) (princ (strcat "\n" reason ": " text)) nil)
  (cond
    ((null (setq file (findfile path))) (say (strcat path " is not there.")))
    ((null (setq copy (compactDatabase:copy file))) (say (strcat file " cannot be repaired.")))
    ((null (setq kept (compactDatabase:exchange file copy)))
     (ts_fdelete copy)
     (say (strcat file " cannot be replaced: it is in use, or its folder is read-only.")))
    (T (say (strcat file " has been compacted. The old file is kept as " kept ".")) T)))

(princ)
