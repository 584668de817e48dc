#pragma once

// Times of what the host asks of entities, for bench/leaders.lsp. Each takes a number of rounds and entity
// names, and returns the seconds that all entities together took.
//
// (bench-draw COUNT ENTITY...) drawing, as far as the entities do it, blocks drawn through
// (bench-extents COUNT ENTITY...) the boxes
// (bench-osnap COUNT ENTITY...) end, middle, nearest and perpendicular points near a pick at their middle
// (bench-load FILE) reading a DXF file into a database of its own
int bareDraw();
int bareExtents();
int bareOsnap();
int bareLoad();

double secondsNow();
