// toval-lyric: look up, print, convert and send lyrics from a shell.
#include <iostream>
#include <string>
#include <vector>

#include "cCliMain.h"

int main(int argc, char** argv) {
    std::vector<std::string> args;
    for (int i = 1; i < argc; ++i)
        args.emplace_back(argv[i]);
    toval::cCliMain tool(std::cout, std::cerr);
    const int code = tool.Run(args);
    std::cout.flush();
    return code;
}
