#include "shell/app.h"

int main(int argumentCount, char** arguments) {
    App app(argumentCount, arguments);
    return app.run();
}
