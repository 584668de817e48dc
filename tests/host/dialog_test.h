#pragma once

#include "host/documents/host.h"
#include "tests/host/dialog_driver.h"

namespace drafthost::testing {

// Dialogs that only the test answers: a host that an earlier test has left would, too.
class HostDialogTest : public DialogTest {
protected:
    static void SetUpTestSuite() {
        endHost();
        DialogTest::SetUpTestSuite();
    }
};

}  // namespace drafthost::testing
