// sylvora: the desktop application. Everything but the entry point is in sylvora_app.
#include "app/app_main.h"
#include "common/large_allocation.h"

int main(int argc, char** argv) {
  sylvora::UseReturnableLargeBlocks();
  return sylvora::app::RunApplication(argc, argv);
}
