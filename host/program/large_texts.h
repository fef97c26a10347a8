// How memory of large texts is given back.
#pragma once

namespace host {

/// Each has pages of its own from now on, which the system has back as soon as it is let go of.
/// Some heaps would rather keep them, and the next, larger one does not fit into the gap.
void GiveBackLargeTexts();

}  // namespace host
