#include "host/editor/input_source.h"

namespace drafthost::editor {

Answer EmptySource::next(const InputRequest& request) {
    if (!warned_)
        warn_(L"nobody answers: the host waits for " + describe(request) + L" and gets an empty response");
    warned_ = true;
    return Answer::of(Answer::Kind::Exhausted);
}

Answer EmptySource::nextForBox(const BoxRequest& box) {
    if (!warned_)
        warn_(L"nobody answers: the dialog \"" + box.caption + L"\" is cancelled");
    warned_ = true;
    return Answer::of(Answer::Kind::Exhausted);
}

}  // namespace drafthost::editor
