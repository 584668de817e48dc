// Feeds the reader and the evaluator with mutated program text, for the address sanitizer to watch. Runs
// natively:
//     lisp_fuzz SECONDS [SEED]
// Each text is evaluated in an interpreter of its own under tight limits; a watchdog cancels endless ones.
// Exits with 0 when nothing was found; the text being evaluated is kept in lisp_fuzz_input.lsp in the
// current folder.

#include "host/lisp/interpreter.h"
#include "host/lisp/utf8.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace drafthost::lisp;

class SilentConsole final : public Console {
public:
    void write(std::wstring_view text) override { written += text.size(); }
    bool atLineStart() const override { return false; }

    std::size_t written = 0;
};

// Fuzzed programs must not reach the real file system.
class NoFiles final : public FileAccess {
public:
    std::optional<std::filesystem::path> resolveProgram(std::wstring_view) override { return std::nullopt; }
    std::filesystem::path resolvePath(std::wstring_view) override { return "no-such-folder/file"; }
    std::unique_ptr<TextStream> open(std::wstring_view, OpenMode) override { return nullptr; }
    void setEnvironment(std::wstring_view, std::wstring_view) override {}
};

// Cancels whatever `current` runs for longer than a moment, again and again in case the program catches it.
class Watchdog {
public:
    void watch(Interpreter* interpreter) {
        const std::lock_guard lock(mutex_);
        current_ = interpreter;
        started_ = std::chrono::steady_clock::now();
    }

private:
    void run(const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            const std::lock_guard lock(mutex_);
            if (current_ && std::chrono::steady_clock::now() - started_ > std::chrono::milliseconds(60)) {
                current_->requestCancel();
            }
        }
    }

    std::mutex mutex_;
    Interpreter* current_ = nullptr;
    std::chrono::steady_clock::time_point started_;
    std::jthread thread_{[this](const std::stop_token& stop) { run(stop); }};
};

const std::vector<std::string> seeds = {
    "(defun f (n / a) (if (< n 2) n (+ (f (- n 1)) (f (- n 2))))) (f 8)",
    "(mapcar '(lambda (x y) (list x (* y 2.5))) '(1 2 3) (list 4 5 6))",
    "(setq l '(3 1 2) i 0) (while (< (setq i (1+ i)) 5) (setq l (vl-sort (cons i l) '<)))",
    "(foreach x '((a . 1) (b . 2)) (setq r (cons (cdr (assoc (car x) '((a . 5)))) r)))",
    "(repeat 5 (setq s (strcat (if s s \"x\") \"\\n\\101\" (itoa 5)))) (vl-string-subst \"a\" \"x\" s 1)",
    "(cond ((wcmatch \"abc\" \"[~a-z]*,?`*#@.\") 1) ((and 1 (or nil t)) (princ \"\\e\\U+00e9\")) (t))",
    "(vl-catch-all-apply '(lambda (x) (car x)) (list 5)) (defun *error* (m) (princ m)) (foo)",
    "(apply 'append (list '(1 2) '(3 . 4))) ; comment\n;| block |; '(a . (b c . d))",
    "(list (rtos 17.5 4 3) (angtos 1.5 4 6) (distof \"1'-5 1/2\\\"\" 4) (angtof \"N 45d30'10\\\" E\" 4))",
    "(eval (read \"(+ 1 2)\")) (set 'a 5) (defun-q g (x) (eval (list 'quote x))) (mapcar g '(1 2))",
    "(vl-remove-if 'minusp '(1 -2)) (vl-some '= '(1 2) '(2 2)) (inters '(0 0) '(1 1) '(0 1) '(1 0) nil)",
    "(lsh 1 31) (expt 2 31) (fix 1e20) (rem 5 -3) (/ 7 2 2.0) (logand 1 3) (atan 1 0) (max 1 2.0) (boole 6 1 "
    "2)",
};

class Mutator {
public:
    Mutator(unsigned seed, std::vector<std::string> words) : random_(seed), words_(std::move(words)) {}

    std::string next() {
        std::string text = seeds[below(seeds.size())];
        if (below(3) == 0) {
            text += " " + seeds[below(seeds.size())];
        }
        for (std::size_t changes = 1 + below(8); changes > 0; --changes) {
            change(text);
        }
        return text;
    }

private:
    std::size_t below(std::size_t bound) { return bound == 0 ? 0 : random_() % bound; }

    void change(std::string& text) {
        static const std::string pieces[] = {"(",    ")",          "'",           "\"",      " . ",
                                             ";|",   "|;",         "\\",          "nil",     "t",
                                             "-1",   "1e99",       "(lambda ",    "()",      "((",
                                             "))",   "0",          "1.5",         "'(",      "\"\"",
                                             "\xFF", "2147483647", "-2147483648", "(quote ", "(defun f (f) ",
                                             "(f 1)"};
        const std::size_t at = below(text.size() + 1);
        switch (below(7)) {
            case 0: text.insert(at, pieces[below(std::size(pieces))]); break;
            case 1: text.erase(at, 1 + below(6)); break;
            case 2: text.insert(at, 1, static_cast<char>(below(256))); break;
            case 3: text.insert(at, " " + words_[below(words_.size())] + " "); break;
            case 4: text.insert(at, " (" + words_[below(words_.size())] + " "); break;
            case 5: replaceWord(text, at); break;
            default: text.insert(at, text.substr(below(text.size() + 1), below(40)));
        }
    }

    // Puts another function's name in place of the one behind the next parenthesis.
    void replaceWord(std::string& text, std::size_t at) {
        const std::size_t open = text.find('(', at);
        if (open != std::string::npos) {
            const std::size_t end = text.find_first_of(" ()", open + 1);
            text.replace(open + 1, end == std::string::npos ? end : end - open - 1,
                         words_[below(words_.size())]);
        }
    }

    std::mt19937 random_;
    std::vector<std::string> words_;
};

Limits tightLimits() {
    Limits limits;
    limits.frames = 2000;
    limits.valueStack = 20'000;
    limits.nativeStack = 2 * 1024 * 1024;
    limits.stringLength = 100'000;
    return limits;
}

std::vector<std::string> functionNames() {
    SilentConsole console;
    std::vector<std::string> names;
    for (const BuiltinDefinition& row : Interpreter(console).builtins()) {
        names.push_back(toUtf8(row.name));
    }
    return names;
}

// The largest list a fuzzed program may build before it is cancelled is bounded by the watchdog only.
void evaluateOnce(const std::string& text, bool collectOften, Watchdog& watchdog) {
    SilentConsole console;
    NoFiles files;
    Interpreter interpreter(console, files, tightLimits());
    interpreter.setCollectAtEverySafePoint(collectOften);
    watchdog.watch(&interpreter);
    const std::wstring wide = fromUtf8(text);
    Interpreter::inputState(wide);
    interpreter.evaluateAndPrint(wide);
    interpreter.evaluateTopLevel(wide, L"fuzz.lsp");
    watchdog.watch(nullptr);
    interpreter.collect();
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 2) {
        std::cerr << "usage: lisp_fuzz SECONDS [SEED]\n";
        return 2;
    }
    const unsigned seed = count > 2 ? static_cast<unsigned>(std::atoi(arguments[2])) : std::random_device()();
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(std::atoi(arguments[1]));
    std::cout << "seed " << seed << std::endl;
    Mutator mutator(seed, functionNames());
    Watchdog watchdog;
    std::size_t runs = 0;
    for (; std::chrono::steady_clock::now() < end; ++runs) {
        const std::string text = mutator.next();
        std::ofstream("lisp_fuzz_input.lsp", std::ios::binary) << text;
        evaluateOnce(text, runs % 2 == 0, watchdog);
    }
    std::cout << runs << " texts, nothing found" << std::endl;
    std::filesystem::remove("lisp_fuzz_input.lsp");
    return 0;
}
