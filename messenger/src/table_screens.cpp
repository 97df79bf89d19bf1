#include "table_screens.h"

#include "choices.h"

#include <Host/WAStaticTableViewController.h>

#include <UIKit/UIKit.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace messenger {

namespace {

std::string utf8(NSString* text) {
    return text != nullptr ? text->utf8() : std::string();
}

UITableViewCell* cellOf(WATableRow* row) {
    return objc::cast<UITableViewCell>(row->cell());
}

UISwitch* switchOf(WATableRow* row) {
    UITableViewCell* cell = cellOf(row);
    return cell != nullptr ? objc::cast<UISwitch>(cell->accessoryView()) : nullptr;
}

// The row's title: the host's own, else what its cell's label shows.
std::string rowTitle(WATableRow* row) {
    std::string text = utf8(row->title());
    if (text.empty()) {
        if (UITableViewCell* cell = cellOf(row)) text = utf8(cell->textLabel()->text());
    }
    return text;
}

// The title and, after it, what else the cell shows: a detail text, the
// switch's state, an image, the accessory mark.
std::string rowText(WATableRow* row) {
    std::string text = rowTitle(row);
    if (text.empty()) text = "(row)";
    const std::string detail = utf8(row->detailText());
    if (!detail.empty()) text += " — " + detail;
    UITableViewCell* cell = cellOf(row);
    if (cell == nullptr) return text;
    if (UILabel* label = cell->detailTextLabel(); label != nullptr && label->text() != nullptr) {
        text += " — " + utf8(label->text());
    }
    if (cell->imageView()->image() != nullptr) text += " [image]";
    if (UISwitch* toggle = switchOf(row)) {
        text += toggle->isOn() ? " [on]" : " [off]";
    } else if (cell->accessoryView() == nullptr) {
        switch (cell->accessoryType()) {
            case UITableViewCellAccessoryDisclosureIndicator:
                text += " >";
                break;
            case UITableViewCellAccessoryCheckmark:
                text += " [checked]";
                break;
            case UITableViewCellAccessoryDetailDisclosureButton:
            case UITableViewCellAccessoryDetailButton:
                text += " (i)";
                break;
            default:
                break;
        }
    }
    return text;
}

void renderStaticTable(id object, ScreenText& text) {
    auto* table = static_cast<WAStaticTableViewController*>(object);
    const std::string title = utf8(table->title());
    text.title = title.empty() ? class_getName(object_getClass(table)) : title;
    const auto selected = table->selectedRow();
    std::size_t s = 0;
    for (WATableSection* section : table->sectionList()) {
        ++s;
        const std::string header = utf8(section->headerText());
        text.lines.push_back("[" + (header.empty() ? "section " + std::to_string(s) : header) +
                             "]");
        std::size_t r = 0;
        for (const auto& row : section->rowList()) {
            ++r;
            const bool on = selected && selected->first == s - 1 && selected->second == r - 1;
            text.lines.push_back((on ? "> " : "  ") + std::to_string(s) + "." + std::to_string(r) +
                                 " " + rowText(row.get()));
        }
        // A footer that is set but empty is shown as such: it is not the same
        // as none.
        if (NSString* footer = section->footerText()) {
            text.lines.push_back("  footer: \"" + utf8(footer) + "\"");
        }
    }
}

struct RowPosition {
    std::size_t section = 0;  // from 0
    std::size_t row = 0;
    WATableRow* rowObject = nullptr;
};

// "S.R" (from 1) or a row's exact title.
std::optional<RowPosition> findRow(WAStaticTableViewController* table,
                                   const std::string& argument) {
    const std::vector<WATableSection*> sections = table->sectionList();
    const auto dot = argument.find('.');
    if (dot != std::string::npos && dot > 0 &&
        argument.find_first_not_of("0123456789.") == std::string::npos) {
        const std::size_t s = std::strtoul(argument.substr(0, dot).c_str(), nullptr, 10);
        const std::size_t r = std::strtoul(argument.substr(dot + 1).c_str(), nullptr, 10);
        if (s == 0 || r == 0 || s > sections.size() || r > sections[s - 1]->rowList().size()) {
            return std::nullopt;
        }
        return RowPosition{s - 1, r - 1, sections[s - 1]->rowList()[r - 1].get()};
    }
    const std::string title = unquoted(argument);
    for (std::size_t s = 0; s < sections.size(); ++s) {
        const auto& rows = sections[s]->rowList();
        for (std::size_t r = 0; r < rows.size(); ++r) {
            if (rowTitle(rows[r].get()) == title) return RowPosition{s, r, rows[r].get()};
        }
    }
    return std::nullopt;
}

// The row of the table in front, or a failure said on the output.
std::optional<std::pair<WAStaticTableViewController*, RowPosition>> rowInFront(
    CommandContext& context, const std::string& argument) {
    auto* table = objc::cast<WAStaticTableViewController>(context.app.frontContent());
    if (table == nullptr) {
        context.fail("No table on screen.");
        return std::nullopt;
    }
    const auto position = findRow(table, argument);
    if (!position) {
        context.fail("No row '" + argument + "' (rows are S.R, as listed, or a title).");
        return std::nullopt;
    }
    return std::make_pair(table, *position);
}

void tap(CommandContext& context, const std::string& argument) {
    if (const auto found = rowInFront(context, argument)) {
        found->first->tapRow(found->second.section, found->second.row);
    }
}

void toggle(CommandContext& context, const std::string& argument) {
    const auto found = rowInFront(context, argument);
    if (!found) return;
    UISwitch* toggle = switchOf(found->second.rowObject);
    if (toggle == nullptr) {
        context.fail("Row '" + argument + "' has no switch.");
        return;
    }
    if (!toggle->userToggle()) context.fail("The switch of row '" + argument + "' is disabled.");
}

}  // namespace

void addTableRenderers(ScreenRenderers& renderers) {
    renderers.add("WAStaticTableViewController", &renderStaticTable);
}

void addTableCommands(CommandTable& table) {
    table.add({"tap", "ROW", "tap a table row (S.R as listed, or its title)", &tap});
    table.add({"toggle", "ROW", "flip the switch of a table row", &toggle});
}

}  // namespace messenger
