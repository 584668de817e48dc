#pragma once

// The instructions of the evaluator.
//
// Code is a sequence of 64-bit words: an operation, then its operands. An operand is a symbol (its
// address), a value (its bits), a count, or a jump distance counted from the word behind it. "Stack" is the
// interpreter's value stack; "top" its last value.
//
// The inlined functions (arithmetic, comparison, car...) are guarded: their first two operands are the
// symbol the program wrote and the built-in function it was bound to when the code was compiled. When
// the symbol is bound to something else by the time the instruction runs, or the operands are not what the
// short way handles, the function is called like any other; so redefining `+` works, and every
// error is raised by the built-in function itself.

#include <cstdint>

namespace drafthost::lisp {

using Word = std::uint64_t;

// Where the operands of an inlined function are: suffixes of the operations below.
enum class BinaryMode : std::uint8_t { Stack, VariableConstant, StackConstant, Variables };
enum class UnaryMode : std::uint8_t { Stack, Variable };

// clang-format off
#define DRAFTHOST_LISP_BINARY(X, name) \
    X(name##Stack) X(name##VariableConstant) X(name##StackConstant) X(name##Variables)
#define DRAFTHOST_LISP_UNARY(X, name) X(name##Stack) X(name##Variable)

#define DRAFTHOST_LISP_OPERATIONS(X)                                                                       \
    X(Constant)        /* value            push it                                                      */ \
    X(Variable)        /* symbol           push its value                                               */ \
    X(Set)             /* symbol           assign top, keep it                                          */ \
    X(SetAndPop)       /* symbol           assign top, drop it                                          */ \
    X(Pop)             /*                  drop top                                                     */ \
    X(Replace)         /* count            store top `count` values further down, drop it               */ \
    X(Jump)            /* distance                                                                      */ \
    X(JumpBack)        /* distance         loop end: a safe point                                       */ \
    X(JumpIfNil)       /* distance         drop top; jump when it was nil                               */ \
    X(JumpIfTrue)      /* distance         drop top; jump when it was not nil                           */ \
    X(JumpIfTrueKeep)  /* distance         jump when top is not nil; otherwise drop it                  */ \
    X(Call)            /* symbol count     call with the top `count` values                             */ \
    X(CallValue)       /* count            the same; the function is below the arguments                */ \
    X(Return)          /*                  top is the result                                            */ \
    X(Halt)            /*                  return to native code                                        */ \
    X(Raise)           /* string           raise an error with this text                                */ \
    X(ForeachBegin)    /* symbol           top must be a list; save the symbol's value                  */ \
    X(ForeachNext)     /* symbol distance  assign the next element of top, or jump                      */ \
    X(ForeachEnd)      /*                  restore the symbol's value, drop top                         */ \
    X(RepeatBegin)     /*                  top must be an integer                                       */ \
    X(RepeatNext)      /* distance         count top down, or drop it and jump                          */ \
    X(ConsStack)       /* guard                                                                         */ \
    DRAFTHOST_LISP_BINARY(X, Add)                                                                          \
    DRAFTHOST_LISP_BINARY(X, Subtract)                                                                     \
    DRAFTHOST_LISP_BINARY(X, Multiply)                                                                     \
    X(LessStack) X(LessEqualStack) X(GreaterStack) X(GreaterEqualStack) X(SameStack) X(DifferentStack)     \
    /* guard, operands, distance: jump when the comparison fails. A JumpIfNil follows, for when the        \
       function had to be called. */                                                                       \
    DRAFTHOST_LISP_BINARY(X, UnlessLess)                                                                   \
    DRAFTHOST_LISP_BINARY(X, UnlessLessEqual)                                                              \
    DRAFTHOST_LISP_BINARY(X, UnlessGreater)                                                                \
    DRAFTHOST_LISP_BINARY(X, UnlessGreaterEqual)                                                           \
    DRAFTHOST_LISP_BINARY(X, UnlessSame)                                                                   \
    DRAFTHOST_LISP_BINARY(X, UnlessDifferent)                                                              \
    DRAFTHOST_LISP_UNARY(X, Increment)                                                                     \
    DRAFTHOST_LISP_UNARY(X, Decrement)                                                                     \
    DRAFTHOST_LISP_UNARY(X, Not)                                                                           \
    DRAFTHOST_LISP_UNARY(X, Car)                                                                           \
    DRAFTHOST_LISP_UNARY(X, Cdr)                                                                           \
    DRAFTHOST_LISP_UNARY(X, Cadr)                                                                          \
    DRAFTHOST_LISP_UNARY(X, Caddr)

enum class Operation : Word {
#define DRAFTHOST_LISP_ENUMERATOR(name) name,
    DRAFTHOST_LISP_OPERATIONS(DRAFTHOST_LISP_ENUMERATOR)
#undef DRAFTHOST_LISP_ENUMERATOR
};
// clang-format on

}  // namespace drafthost::lisp
