#include "stores/databaseError.h"

#include <string>

#include "platform/database/database.h"
#include "platform/desktop/messageBox.h"
#include "platform/values/text.h"

namespace stores {

void reportDatabaseError(const Database& database) {
    reportDatabaseError(database.errorCode(), database.errorMessage());
}

void reportDatabaseError(int code, const std::string& message) {
    beep();
    const std::string gap = std::string(text::endOfLine()) + std::string(text::endOfLine());
    showMessage("Database Error: " + std::to_string(code) + gap + message);
}

}  // namespace stores
