// The host's color dialog under mouse and keyboard.

#include "framework/window_picture.h"
#include "host/api/color_dialog.h"
#include "host/dialogs/color_cells.h"
#include "host/dialogs/color_dialog_ids.h"
#include "host/graphics/color_table.h"
#include "tests/host/dialog_test.h"

#include "host/api/editor.h"
#include "host/documents/host.h"
#include "host/editor/answers_file.h"

#include <optional>

using namespace drafthost;
using namespace drafthost::testing;

namespace {

using ColorDialog = HostDialogTest;
using Step = DialogDriver::Step;

// The chosen color, or nothing when the dialog was cancelled.
std::optional<int> chosen(int color, std::deque<Step> steps, bool allowByBlockByLayer = true) {
    const DialogDriver driver(std::move(steps));
    const int before = color;
    if (acedSetColorDialog(color, allowByBlockByLayer, 3))
        return color;
    EXPECT_EQ(color, before);
    return std::nullopt;
}

// The middle of a field, in the control.
POINT middle(HWND cells, int columns, int rows, int column, int row) {
    RECT area{};
    GetClientRect(cells, &area);
    return {area.right * (2 * column + 1) / (2 * columns), area.bottom * (2 * row + 1) / (2 * rows)};
}

Step click(int id, int columns, int rows, int column, int row, UINT message = WM_LBUTTONDOWN) {
    return [=](HWND dialog) {
        const HWND cells = GetDlgItem(dialog, id);
        const POINT at = middle(cells, columns, rows, column, row);
        PostMessageW(cells, message, MK_LBUTTON, MAKELPARAM(at.x, at.y));
    };
}

Step type(const wchar_t* text) {
    return [text](HWND dialog) {
        const HWND edit = GetDlgItem(dialog, IDC_COLOR_EDIT);
        SendMessageW(edit, EM_SETSEL, 0, -1);
        SendMessageW(edit, WM_CHAR, VK_BACK, 1);
        for (const wchar_t* c = text; *c; ++c)
            SendMessageW(edit, WM_CHAR, *c, 1);
    };
}

Step expectText(int id, std::wstring expected) {
    return [=](HWND dialog) { EXPECT_EQ(textOf(GetDlgItem(dialog, id)), expected); };
}

// The color in the middle of the preview's half.
Step expectPreview(bool now, int index) {
    return [=](HWND dialog) {
        const framework::WindowPicture picture = framework::takeWindowPicture(dialog);
        const RECT frame = placeOf(dialog), area = placeOf(GetDlgItem(dialog, IDC_COLOR_PREVIEW));
        const int quarter = static_cast<int>(area.right - area.left) / 4;
        const int x = (now ? area.right - quarter : area.left + quarter) - frame.left;
        const graphics::Rgb rgb = graphics::colorOfIndex(index);
        EXPECT_EQ(picture.at(x, (area.top + area.bottom) / 2 - frame.top),
                  static_cast<std::uint32_t>(rgb.red << 16 | rgb.green << 8 | rgb.blue));
    };
}

}  // namespace

TEST_F(ColorDialog, ClicksChooseFromTheUsualLayout) {
    const auto ok = press(IDOK);
    EXPECT_EQ(chosen(7, {click(IDC_COLOR_PALETTE, 24, 10, 0, 4), ok}), 10);
    EXPECT_EQ(chosen(7, {click(IDC_COLOR_PALETTE, 24, 10, 0, 0), ok}), 18);
    EXPECT_EQ(chosen(7, {click(IDC_COLOR_PALETTE, 24, 10, 0, 5), ok}), 11);
    EXPECT_EQ(chosen(7, {click(IDC_COLOR_PALETTE, 24, 10, 23, 9), ok}), 249);
    EXPECT_EQ(chosen(7, {click(IDC_COLOR_STANDARD, 9, 1, 0, 0), ok}), 1);
    EXPECT_EQ(chosen(7, {click(IDC_COLOR_STANDARD, 9, 1, 8, 0), ok}), 9);
    EXPECT_EQ(chosen(7, {click(IDC_COLOR_GRAYS, 6, 1, 5, 0), ok}), 255);
    EXPECT_EQ(chosen(7, {click(IDC_COLOR_STANDARD, 9, 1, 2, 0), press(IDCANCEL)}), std::nullopt);
    EXPECT_EQ(chosen(7, {click(IDC_COLOR_STANDARD, 9, 1, 2, 0),
                         click(IDC_COLOR_STANDARD, 9, 1, 2, 0, WM_LBUTTONDBLCLK)}),
              3);
}

TEST_F(ColorDialog, ArrowKeysWalkThroughTheFieldsAndStopAtTheEdge) {
    const int palette = IDC_COLOR_PALETTE, standard = IDC_COLOR_STANDARD;
    const auto focus = [](int id) {
        return Step([id](HWND dialog) {
            SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(dialog, id)), TRUE);
        });
    };
    EXPECT_EQ(chosen(10, {focus(palette), key(VK_RIGHT), key(VK_DOWN), key(VK_UP), key(VK_UP), press(IDOK)}),
              22);
    EXPECT_EQ(chosen(10, {focus(palette), key(VK_LEFT), press(IDOK)}), 10);
    EXPECT_EQ(chosen(10, {focus(palette), key(VK_END), key(VK_RIGHT), press(IDOK)}), 240);
    // Nothing of the standard colors is chosen: the first key chooses where the keyboard stands.
    EXPECT_EQ(chosen(10, {focus(standard), key(VK_RIGHT), press(IDOK)}), 1);
    EXPECT_EQ(chosen(10, {focus(standard), key(VK_SPACE), key(VK_RIGHT), key(VK_RETURN)}), 2);
    EXPECT_EQ(chosen(10, {focus(standard), key(VK_SPACE), key(VK_ESCAPE)}), std::nullopt);
}

TEST_F(ColorDialog, TheFieldTakesNumbersAndNamesAndRefusesTheRest) {
    const auto ok = press(IDOK);
    EXPECT_EQ(chosen(7, {type(L"30"), ok}), 30);
    EXPECT_EQ(chosen(7, {type(L" Magenta "), ok}), 6);
    EXPECT_EQ(chosen(7, {type(L"BYLAYER"), ok}), 256);
    EXPECT_EQ(chosen(7, {type(L"0"), ok}), 0);
    EXPECT_EQ(chosen(7, {press(IDC_COLOR_BY_BLOCK), ok}), 0);
    EXPECT_EQ(chosen(7, {press(IDC_COLOR_BY_LAYER), ok}), 256);
    for (const wchar_t* wrong : {L"", L"   ", L"257", L"-1", L"1.5", L"reddish", L"99999999999999999999"}) {
        EXPECT_EQ(chosen(7, {type(wrong), ok, [](HWND box) { EXPECT_EQ(textOf(box), L"Select Color"); },
                             press(IDOK), type(L"5"), ok}),
                  5)
            << "after a wrong text";
    }
    // Not allowed here, neither typed nor pressed.
    const Step message = press(IDOK);
    EXPECT_EQ(chosen(7,
                     {type(L"bylayer"), ok, message, type(L"256"), ok, message, type(L"0"), ok, message,
                      [](HWND dialog) {
                          EXPECT_FALSE(IsWindowEnabled(GetDlgItem(dialog, IDC_COLOR_BY_LAYER)));
                          EXPECT_FALSE(IsWindowEnabled(GetDlgItem(dialog, IDC_COLOR_BY_BLOCK)));
                      },
                      press(IDCANCEL)},
                     false),
              std::nullopt);
    EXPECT_EQ(chosen(256, {expectText(IDC_COLOR_EDIT, L"white"), ok}, false), 7);
}

TEST_F(ColorDialog, ShowsTheOldAndTheNewColorAndSaysThemInTexts) {
    chosen(1, {expectText(IDC_COLOR_EDIT, L"red"), expectPreview(false, 1), expectPreview(true, 1),
               type(L"150"), expectPreview(false, 1), expectPreview(true, 150),
               expectText(IDC_COLOR_INDEX, L"Index color: 150"),
               expectText(IDC_COLOR_RGB, L"Red, Green, Blue: 0, 127, 255"),
               expectText(IDC_COLOR_PALETTE, L"Color palette, color 150"),
               expectText(IDC_COLOR_STANDARD, L"Standard colors"),
               expectText(IDC_COLOR_PREVIEW, L"Old color red, new color 150"), press(IDC_COLOR_BY_LAYER),
               expectPreview(true, 3), expectText(IDC_COLOR_PREVIEW, L"Old color red, new color ByLayer"),
               press(IDC_COLOR_BY_BLOCK), expectPreview(true, 7), press(IDCANCEL)});
}

TEST_F(ColorDialog, ModulesCallItByItsNameInLisp) {
    std::wstring problem;
    ASSERT_TRUE(theHost().documents().open(L"", problem));
    editor::AnswersFileError error;
    const auto noted = [](const std::wstring&) { ADD_FAILURE(); };
    theHost().setInput(std::make_unique<editor::ScriptedDrafter>(
        editor::parseAnswers(L"type #1108 30\npress OK\npress Cancel\n", L"answers", error), L"answers",
        noted, noted));
    resbuf* const call = acutBuildList(RTSTR, L"acad_colordlg", RTSHORT, 7, RTNIL, RTNONE);
    resbuf* result = nullptr;
    ASSERT_EQ(acedInvoke(call, &result), RTNORM);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->restype, RTSHORT);
    EXPECT_EQ(result->resval.rint, 30);
    acutRelRb(result);
    EXPECT_EQ(acedInvoke(call, &result), RTNORM);
    EXPECT_EQ(result, nullptr);  // cancelled: nil
    call->rbnext->resval.rint = 300;
    EXPECT_EQ(acedInvoke(call, &result), RTERROR);
    EXPECT_EQ(result, nullptr);
    acutRelRb(call);
    endHost();
}
