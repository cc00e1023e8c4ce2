// What the panel's table shows and does, section by section: the answers to
// the table's data source and delegate questions. Split from the controller's
// runtime class so that each answer is a plain function of the settings.
#pragma once

#include <functional>
#include <string>

#include "panel/panel_rows.hpp"
#include "rt/types.hpp"
#include "ui/tables.hpp"

namespace panel {

long rowsInSection(long section);
// Reloads one section of the panel's table, or the whole table when another
// section no longer has the rows it shows.
void reloadSectionOf(rt::Id panel, long section,
                     ui::RowAnimation animation = ui::RowAnimation::None);
double rowHeight(long section, long row);
// "" for no header / footer (the table then shows none).
std::string headerTitle(long section);
std::string footerTitle(long section);
rt::Id cellFor(rt::Id panel, long section, long row);
void didSelect(rt::Id panel, long section, long row);
bool canEdit(long section, long row);
// Deletes a window or a secret row; `done` is told whether it happened.
void deleteRow(rt::Id panel, long section, long row, const std::function<void(bool)>& done);
// The username of secret row `row` (from 1), "" when there is none.
std::string secretAtRow(long row);

}  // namespace panel
