// The host's screens made of fixed sections of rows (Settings and its pages).
//
// The sections live in the instance variable `_sections` (a mutable array of
// WATableSection), reachable by key-value coding; there is no accessor
// method. A subclass fills it when its view loads. When the controller leaves
// its navigation stack it lets its rows go (their handlers may hold the
// controller) and unloads its view, so that showing it again rebuilds them.
#pragma once

#include <Host/WATableSection.h>

#include <UIKit/UIViewController.h>

#include <optional>
#include <utility>
#include <vector>

class NSMutableArray;

class WAStaticTableViewController : public UIViewController {
    OBJC_CLASS(WAStaticTableViewController)

    // Clears the highlight of the tapped row.
    void deselectActiveCell() { objc::msgSend<void>(this, objc::sel<"deselectActiveCell">()); }

    // C++ side: the sections as the table shows them (objects of other
    // classes in `_sections` are skipped), the tapped row, and taps.
    std::vector<WATableSection*> sectionList() const;
    NSMutableArray* sectionsArray() const noexcept { return sections_.get(); }
    std::optional<std::pair<std::size_t, std::size_t>> selectedRow() const noexcept {
        return selected_;
    }
    // Selects the row and runs its handler; false when there is no such row.
    bool tapRow(std::size_t section, std::size_t row);

    WAStaticTableViewController() = default;

  private:
    WAStaticTableViewController* imp_initWithNibNameBundle(NSString* nibName, id bundle);
    void imp_deselectActiveCell() { selected_.reset(); }
    void imp_didMoveToParentViewController(UIViewController* parent);
    // The view is a grouped table over the sections.
    void imp_loadView();

    objc::Strong<NSMutableArray> sections_;
    std::optional<std::pair<std::size_t, std::size_t>> selected_;
};
