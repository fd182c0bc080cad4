#include "platform/Association.h"

namespace platform
{

Association::Association(const QString& product, const QString& programFolder)
    : m_product(product), m_values{{
                              {product, "Flash Movie"},
                              {".SWF", product},
                              {product + "\\shell\\open\\command", programFolder + product + ".exe %1"},
                              {product + "\\DefaultIcon", programFolder + product + ".exe,1"},
                          }}
{
}

} // namespace platform
