// kivmeta: the host application of kivmetadataui. Run "kivmeta --help".
#include "Application.h"

int main(int argc, char **argv)
{
    return kivmeta::Run(argc, argv);
}
