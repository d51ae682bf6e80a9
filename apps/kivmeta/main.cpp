// kivmeta: the host application of kivmetadataui.
#include <kivmetadataui/kivmetadataui.h>

#include <cstdio>

int main(int, char **)
{
    kivmetadataui::Initialize();
    std::printf("kivmetadataui %s started\n", kivmetadataui::Version());
    kivmetadataui::Terminate();
    std::printf("kivmetadataui stopped\n");
    return 0;
}
