;;; Every kind of fitting in plan: edges, outlines of round bodies, a centre line.

(load "shared/fittings")
