#include "app/decoder/Service.h"

#include <unistd.h>

/// The decoder process: decodes the files that it is asked for on standard input, until that ends.
int main()
{
    return korvo::serveDecoding(STDIN_FILENO, STDOUT_FILENO);
}
