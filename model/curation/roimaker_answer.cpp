#include "roimaker_answer.h"

#include <memory>
#include <sstream>
#include <string>

std::list<roi> read_answer(std::FILE* fp)
{
    constexpr int line_size = 65536;
    const auto buf = std::make_unique<char[]>(line_size);
    std::list<roi> rois;
    std::stringstream stream;
    int roi_num = 0;
    if (!std::fgets(buf.get(), line_size, fp))
        return rois;
    stream << buf.get();
    stream >> roi_num;
    for (int i = 0; i < roi_num; ++i) {
        if (!std::fgets(buf.get(), line_size, fp) || !std::fgets(buf.get(), line_size, fp))
            break;
        stream << buf.get();
        std::string dum;
        int x = 0;
        int y = 0;
        std::string ol;
        stream >> dum >> x >> y >> ol;
        rois.emplace_back(x, y, 0, 0, ol);
    }
    return rois;
}
