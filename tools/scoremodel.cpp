// The scoremodel command-line tool.
#include <scoremodel/scoremodel.h>

#include <cstdio>
#include <cstring>

static int Usage(FILE *out)
{
    std::fprintf(out, "usage: scoremodel --version\n"
                      "       scoremodel demo\n");
    return out == stdout ? 0 : 2;
}

int main(int argc, char **argv)
{
    if (argc < 2)
        return Usage(stderr);
    if (!std::strcmp(argv[1], "--version"))
    {
        std::printf("scoremodel %s\n", SCOREMODEL_VERSION);
        return 0;
    }
    if (!std::strcmp(argv[1], "--help") || !std::strcmp(argv[1], "-h"))
        return Usage(stdout);
    std::fprintf(stderr, "scoremodel: unknown command '%s'\n", argv[1]);
    return Usage(stderr);
}
