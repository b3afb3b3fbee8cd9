#pragma once

namespace qirn {

/// The sheets that a command can bring up; the window shows them.
enum class PaintSheet { recovery, exportPicture };

} // namespace qirn
