#include "stores/databaseerror.h"

#include <string>

#include "platform/database.h"
#include "platform/messagebox.h"
#include "platform/text.h"

namespace stores {

void reportDatabaseError(const Database& database) {
    beep();
    const std::string gap = std::string(text::endOfLine()) + std::string(text::endOfLine());
    showMessage("Database Error: " + std::to_string(database.errorCode()) + gap + database.errorMessage());
}

}  // namespace stores
