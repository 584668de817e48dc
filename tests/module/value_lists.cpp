#include "tests/module/value_lists.h"

#include <sstream>

namespace tessary::testing {

namespace {

void showNode(const resbuf& node, std::ostream& out) {
    const auto& value = node.resval;
    switch (node.restype) {
        case RTLB: out << "("; break;
        case RTLE: out << ")"; break;
        case RTDOTE: out << "."; break;
        case RTNIL: out << "nil"; break;
        case RTT: out << "T"; break;
        case RTREAL: out << "real " << value.rreal; break;
        case RTSHORT: out << value.rint << "s"; break;
        case RTLONG: out << value.rlong; break;
        case RTPOINT: out << "[" << value.rpoint[0] << " " << value.rpoint[1] << "]"; break;
        case RT3DPOINT:
            out << "[" << value.rpoint[0] << " " << value.rpoint[1] << " " << value.rpoint[2] << "]";
            break;
        case RTSTR: {
            const std::wstring text = value.rstring;
            out << '"' << std::string(text.begin(), text.end()) << '"';
            break;
        }
        default: out << "<" << node.restype << ">";
    }
}

}  // namespace

ValueList makeNode(short type) {
    ValueList node = ownValueList(acutNewRb(RTNIL));
    node->restype = type;
    return node;
}

std::string shown(const resbuf* list) {
    std::ostringstream out;
    for (const resbuf* node = list; node; node = node->rbnext) {
        showNode(*node, out);
        if (node->rbnext) {
            out << ' ';
        }
    }
    return out.str();
}

}  // namespace tessary::testing
