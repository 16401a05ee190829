#include "converters/cavSources.h"

#include "platform/desktop/messageBox.h"
#include "platform/values/text.h"

namespace cavSources {

void explain() {
    showMessage(
        "No OBDC drivers found." + std::string(text::endOfLine()) +
        "You must run the Windows version of the converter to convert old version Tolvaris files. Then copy the "
        "converted file to this computer.");
}

}  // namespace cavSources
