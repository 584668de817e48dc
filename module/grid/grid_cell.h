#pragma once

// The cells of the grid control. A cell knows its text and how it is edited; it knows nothing of its place,
// of windows or of what its text means to a dialog.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tessary {

// What a column's cells are.
enum class GridColumnType {
    text = 0,
    checkBox = 1,
    editableDropDown = 2,  // choices, and free typing
    choiceDropDown = 3,    // choices only
    tree = 4,
    lookedUp = 5,  // choices only; the cell holds a choice's datum and shows its text
};

// What a drop-down offers. Shared by the cells that offer the same; never changed once it is shared.
struct GridChoices {
    std::vector<std::wstring> texts;
    std::vector<int> data;  // parallel to texts; a choice without a datum has 0

    // The first choice with that text or datum; -1 when there is none.
    int find(std::wstring_view text) const;
    int findDatum(int datum) const;
    int datumOf(int choice) const;

    // Long lists are searched by order: every row of a grid may ask. Made by the first search; the numbers of
    // the choices, so that a copy of the list may keep them.
    mutable std::vector<std::uint32_t> textOrder{}, datumOrder{};
};
using GridChoicesPointer = std::shared_ptr<const GridChoices>;

constexpr std::uint32_t gridCellReadOnly = 8;

class CGridCellBase {
public:
    virtual ~CGridCellBase() = default;
    virtual std::unique_ptr<CGridCellBase> clone() const = 0;

    // The text as it was set.
    virtual const std::wstring& text() const = 0;
    virtual void setText(std::wstring_view text) = 0;
    // The text as the drafter sees and edits it.
    virtual const std::wstring& shownText() const { return text(); }
    virtual void setShownText(std::wstring_view text) { setText(text); }

    // How the cell is edited and drawn, whatever its column's type.
    virtual GridColumnType kind() const { return GridColumnType::text; }
    // Of the choice that the text is; 0 when it is none, and for cells without choices.
    virtual int selectedData() const { return 0; }
    // Null for cells without choices.
    virtual const GridChoices* choices() const { return nullptr; }

    std::uint32_t state() const { return state_; }
    void setState(std::uint32_t state) { state_ = state; }
    bool isReadOnly() const { return (state_ & gridCellReadOnly) != 0; }

private:
    std::uint32_t state_ = 0;
};

class CGridCell : public CGridCellBase {
public:
    std::unique_ptr<CGridCellBase> clone() const override { return std::make_unique<CGridCell>(*this); }
    const std::wstring& text() const override { return text_; }
    void setText(std::wstring_view text) override { text_ = text; }

private:
    std::wstring text_;
};

// A drop-down. The text need not be among its choices.
class CGridCellCombo final : public CGridCell {
public:
    // lookedUp: the text is a choice's datum, or its number (from 0) in a list without data.
    CGridCellCombo(GridChoicesPointer choices, bool editable, bool lookedUp = false)
        : choices_(std::move(choices)), editable_(editable), lookedUp_(lookedUp) {}
    std::unique_ptr<CGridCellBase> clone() const override { return std::make_unique<CGridCellCombo>(*this); }
    GridColumnType kind() const override {
        return editable_ ? GridColumnType::editableDropDown : GridColumnType::choiceDropDown;
    }
    int selectedData() const override;
    const GridChoices* choices() const override { return choices_.get(); }
    void setChoices(GridChoicesPointer choices) { choices_ = std::move(choices); }
    const std::wstring& shownText() const override;
    void setShownText(std::wstring_view text) override;
    bool isLookedUp() const { return lookedUp_; }

private:
    // -1 when the text is no choice.
    int selectedChoice() const;

    GridChoicesPointer choices_;  // null: none
    bool editable_;
    bool lookedUp_;
};

// A check box. Any text but "0" checks it; its own text is then "1", otherwise "0".
class CGridBtnCell final : public CGridCellBase {
public:
    std::unique_ptr<CGridCellBase> clone() const override { return std::make_unique<CGridBtnCell>(*this); }
    const std::wstring& text() const override;
    void setText(std::wstring_view text) override { checked_ = text != L"0"; }
    // Nothing: the box is drawn instead.
    const std::wstring& shownText() const override;
    GridColumnType kind() const override { return GridColumnType::checkBox; }
    bool isChecked() const { return checked_; }

private:
    bool checked_ = false;
};

// The head of a section (level 1) or a row under one (level 2), in a tree column.
class CGridTreeCell final : public CGridCell {
public:
    explicit CGridTreeCell(int level) : level_(level) {}
    std::unique_ptr<CGridCellBase> clone() const override { return std::make_unique<CGridTreeCell>(*this); }
    GridColumnType kind() const override { return GridColumnType::tree; }
    int level() const { return level_; }
    bool isExpanded() const { return expanded_; }
    // Of a cell in a grid, through GridModel::setExpanded, which shows or hides the rows below.
    void setExpanded(bool expanded) { expanded_ = expanded; }

private:
    int level_;
    bool expanded_ = true;
};

}  // namespace tessary
