// sylvora: the desktop application. Everything but the entry point is in sylvora_app.
#include "app/app_main.h"

int main(int argc, char** argv) { return sylvora::app::RunApplication(argc, argv); }
