// The columns of a grid's matrix: what their cells are, are called and offer.

#include "module/grid/grid_model.h"

#include <algorithm>
#include <utility>

namespace tessary {
namespace {

bool isDropDown(GridColumnType type) {
    return type == GridColumnType::editableDropDown || type == GridColumnType::choiceDropDown;
}

}  // namespace

GridColumnType GridModel::columnType(int column) const {
    return hasColumn(column) ? columnAt(column).type : GridColumnType::text;
}

void GridModel::setColumnType(int column, GridColumnType type) {
    if (!hasColumn(column)) {
        return;
    }
    bool isTree = tree_ && tree_->column() == column;
    if (type == GridColumnType::tree) {
        if (isTree) {
            return;
        }
        if (tree_) {
            setColumnType(tree_->column(), GridColumnType::text);
        }
        tree_.emplace(column);
    } else if (isTree) {
        tree_.reset();
    }
    columnAt(column).type = type;
    for (int row = fixedRowCount(); row < rowCount(); ++row) {
        if (!isHeader(row, column) || isTree) {
            remakeCell(row, column);
        }
    }
}

void GridModel::setColumnName(int column, const std::wstring& name) {
    if (hasColumn(column)) {
        names_[name] = column;
    }
}

int GridModel::columnNamed(const std::wstring& name) const {
    auto found = names_.find(name);
    return found == names_.end() ? -1 : found->second;
}

int GridModel::columnWidth(int column) const {
    return hasColumn(column) ? columnAt(column).width : 0;
}

void GridModel::setColumnWidth(int column, int width) {
    if (hasColumn(column)) {
        columnAt(column).width = std::clamp(width, 0, widestColumn);
    }
}

void GridModel::setColumnChoicesFromText(int column, std::wstring_view text) {
    std::vector<std::wstring> choices;
    for (std::size_t begin = 0; begin < text.size();) {
        std::size_t end = std::min(text.find(L'|', begin), text.size());
        if (end > begin) {
            choices.emplace_back(text.substr(begin, end - begin));
        }
        begin = end + 1;
    }
    setColumnChoices(column, std::move(choices));
    setColumnType(column,
                  text.starts_with(L'|') ? GridColumnType::editableDropDown : GridColumnType::choiceDropDown);
}

void GridModel::setColumnChoices(int column, std::vector<std::wstring> texts) {
    if (!hasColumn(column)) {
        return;
    }
    auto choices = std::make_shared<GridChoices>();
    choices->texts = std::move(texts);
    if (const GridChoicesPointer& previous = columnAt(column).choices) {
        choices->data = previous->data;
    }
    columnAt(column).choices = std::move(choices);
}

void GridModel::setColumnChoiceData(int column, std::vector<int> data) {
    if (!hasColumn(column)) {
        return;
    }
    auto choices = std::make_shared<GridChoices>();
    choices->data = std::move(data);
    if (const GridChoicesPointer& previous = columnAt(column).choices) {
        choices->texts = previous->texts;
    }
    columnAt(column).choices = std::move(choices);
}

void GridModel::applyColumnChoices(int column) {
    GridColumnType type = columnType(column);
    if (!hasColumn(column) || type == GridColumnType::checkBox || type == GridColumnType::tree) {
        return;
    }
    for (int row = fixedRowCount(); row < rowCount(); ++row) {
        if (isHeader(row, column)) {
            continue;
        }
        CGridCellBase* there = cell(row, column);
        auto* combo = isDropDown(there->kind()) ? static_cast<CGridCellCombo*>(there) : nullptr;
        bool lookedUp = type == GridColumnType::lookedUp;
        bool editable = type == GridColumnType::text || type == GridColumnType::editableDropDown;
        if (combo && combo->isLookedUp() == lookedUp &&
            (combo->kind() == GridColumnType::editableDropDown) == editable) {
            combo->setChoices(columnAt(column).choices);
        } else {
            replaceCell(row, column,
                        std::make_unique<CGridCellCombo>(columnAt(column).choices, editable, lookedUp));
        }
    }
}

void GridModel::setCellChoices(int row, int column, std::vector<std::wstring> texts, bool editable) {
    if (!cell(row, column)) {
        return;
    }
    if (texts.empty()) {
        makePlainCell(row, column);
        return;
    }
    auto choices = std::make_shared<GridChoices>();
    choices->texts = std::move(texts);
    replaceCell(row, column, std::make_unique<CGridCellCombo>(std::move(choices), editable));
}

void GridModel::makePlainCell(int row, int column) {
    if (cell(row, column)) {
        replaceCell(row, column, std::make_unique<CGridCell>());
    }
}

void GridModel::setReadOnly(int row, int column, bool readOnly) {
    if (CGridCellBase* found = cell(row, column)) {
        found->setState(readOnly ? found->state() | gridCellReadOnly : found->state() & ~gridCellReadOnly);
    }
}

}  // namespace tessary
