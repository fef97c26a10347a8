// A table on a screen. One that wants one instance per line is aligned in columns; when its columns
// do not fit the screen, and when a table wants one property per line, each row becomes a block of
// "label: value" lines.
#pragma once

#include "host/collect/table_view.h"
#include "host/formats/styled_screen.h"

namespace host {

/// `showsAll`: also the old rows of a log.
void WriteTable(const TableView& table, bool showsAll, StyledScreen& screen);

}  // namespace host
