#pragma once

// LISP functions of modules, the command line, input from the drafter, selection sets, system variables.

#include "host/api/database_ids.h"
#include "host/api/resbuf.h"

// ---- LISP functions of a module
// -------------------------------------------------------------------------------------

// Registered in the current document only; call for each document (AcRx::kLoadDwgMsg).
// Binds the LISP name to the module's function number. RTNORM or RTERROR (a name that LISP cannot read).
DRAFTHOST_API int acedDefun(const ACHAR* name, short number);
DRAFTHOST_API int acedUndef(const ACHAR* name, short number);
// Lets the host call the function directly when LISP evaluates the name with that number.
DRAFTHOST_API int acedRegFunc(int (*function)(), short number);
DRAFTHOST_API int acedGetFunCode();  // number of the function being called

// Arguments of the running call as a value list; null when there are none. A list of two or three reals is a
// point; an integer that fits 16 bits is RTSHORT, another RTLONG; other lists keep RTLB ... RTLE. Caller
// frees; a list that is not freed is released when the call ends.
DRAFTHOST_API resbuf* acedGetArgs();

// Result of the running call; the last one set counts. Each returns RTNORM.
DRAFTHOST_API int acedRetNil();
DRAFTHOST_API int acedRetT();
DRAFTHOST_API int acedRetVoid();  // prints nothing at the prompt
DRAFTHOST_API int acedRetInt(int value);
DRAFTHOST_API int acedRetReal(double value);
DRAFTHOST_API int acedRetStr(const ACHAR* text);
DRAFTHOST_API int acedRetPoint(const ads_point point);         // three-dimensional
DRAFTHOST_API int acedRetName(const ads_name name, int type);  // RTENAME or RTPICKS
DRAFTHOST_API int acedRetVal(const resbuf* value);
// The list's values become a LISP list; a list that is one whole RTLB ... RTLE becomes that list itself. The
// caller keeps ownership.
DRAFTHOST_API int acedRetList(const resbuf* list);

// Calls the LISP function named by the first node (RTSTR) with the other nodes as arguments. result: new
// list, caller frees, null for nil. RTERROR when there is no such function or it failed.
DRAFTHOST_API int acedInvoke(const resbuf* call, resbuf** result);
DRAFTHOST_API int acedGetSym(const ACHAR* name, resbuf** value);  // caller frees
DRAFTHOST_API int acedPutSym(const ACHAR* name, const resbuf* value);

// ---- Command line
// ---------------------------------------------------------------------------------------------------

// Formats as wprintf (%s and %ls are wide texts) and prints. Texts of any length.
DRAFTHOST_API int acutPrintf(const ACHAR* format, ...);
DRAFTHOST_API int acedPrompt(const ACHAR* text);
// Message box with the text; prints nothing.
DRAFTHOST_API int acedAlert(const ACHAR* text);
DRAFTHOST_API int acedTextScr();
DRAFTHOST_API int acedGraphScr();
// Runs a command with its answers: pairs of type and value as in acutBuildList, ended by RTNONE or 0.
DRAFTHOST_API int acedCmd(const resbuf* commandAndAnswers);

// ---- Input
// ----------------------------------------------------------------------------------------------------------

enum InputControl : int {
    RSG_NONULL = 1,  // no empty response
    RSG_NOZERO = 2,
    RSG_NONEG = 4,
    RSG_NOLIM = 8,
    RSG_GETZ = 16,
    RSG_DASH = 32,
    RSG_2D = 64,
    RSG_OTHER = 128,  // any text is accepted and fetched with acedGetInput
};
// For the next input only. keywords: blank-separated, capitals are the abbreviation; may be null.
DRAFTHOST_API int acedInitGet(int control, const ACHAR* keywords);
// Each waits for the drafter: RTNORM, RTNONE, RTCAN, RTKWORD, RTERROR. Prompts may be null. Points are UCS
// points.
DRAFTHOST_API int acedGetPoint(const ads_point base, const ACHAR* prompt, ads_point result);
DRAFTHOST_API int acedGetCorner(const ads_point base, const ACHAR* prompt, ads_point result);
DRAFTHOST_API int acedGetDist(const ads_point base, const ACHAR* prompt, ads_real* result);
DRAFTHOST_API int acedGetAngle(const ads_point base, const ACHAR* prompt, ads_real* result);
DRAFTHOST_API int acedGetOrient(const ads_point base, const ACHAR* prompt, ads_real* result);
DRAFTHOST_API int acedGetInt(const ACHAR* prompt, int* result);
DRAFTHOST_API int acedGetReal(const ACHAR* prompt, ads_real* result);
// allowBlanks: a blank does not end the text. result: room for 133 characters.
DRAFTHOST_API int acedGetString(int allowBlanks, const ACHAR* prompt, ACHAR* result);
DRAFTHOST_API int acedGetKword(const ACHAR* prompt, ACHAR* result);
// Keyword or text of the last input. result: room for 133 characters.
DRAFTHOST_API int acedGetInput(ACHAR* result);
DRAFTHOST_API int acedEntSel(const ACHAR* prompt, ads_name entity, ads_point picked);
DRAFTHOST_API bool acedUsrBrk();  // the drafter pressed Esc or Ctrl-C

// ---- Coordinates
// ----------------------------------------------------------------------------------------------------

// from, to: RTSHORT nodes (0 world, 1 current UCS, 2 display), or RTENAME or RT3DPOINT (an entity's
// coordinate system). displacement not 0: a vector. RTNORM or RTERROR.
DRAFTHOST_API int acedTrans(const ads_point point, const resbuf* from, const resbuf* to, int displacement,
                            ads_point result);

// ---- System variables
// -----------------------------------------------------------------------------------------------

// The value is stored in the caller's node (a string in it is the caller's to release). RTERROR: no such
// variable.
DRAFTHOST_API int acedGetVar(const ACHAR* name, resbuf* value);
// RTERROR: no such variable, read-only, wrong type or out of range.
DRAFTHOST_API int acedSetVar(const ACHAR* name, const resbuf* value);

// ---- Selection sets
// -------------------------------------------------------------------------------------------------

// mode: null (ask the drafter), "X" (whole drawing), "_A", "L", "P", "W", "C", "I" ... filter: group list or
// null. RTNORM, RTCAN, RTERROR (nothing selected).
DRAFTHOST_API int acedSSGet(const ACHAR* mode, const void* point1, const void* point2, const resbuf* filter,
                            ads_name selection);
// selection nil: a new set. entity null: nothing is added. result may be the same name.
DRAFTHOST_API int acedSSAdd(const ads_name entity, const ads_name selection, ads_name result);
DRAFTHOST_API int acedSSDel(const ads_name entity, const ads_name selection);
DRAFTHOST_API int acedSSMemb(const ads_name entity, const ads_name selection);
DRAFTHOST_API int acedSSLength(const ads_name selection, std::int32_t* length);
DRAFTHOST_API int acedSSName(const ads_name selection, std::int32_t index, ads_name entity);
DRAFTHOST_API int acedSSFree(const ads_name selection);
