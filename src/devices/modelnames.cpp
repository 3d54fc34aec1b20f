#include <devices/modelnames.h>

#include <sdk/models.h>

namespace tarn::devices {

QString prettyModelName(sdk::Model model)
{
    if (model == sdk::models::any)
        return QStringLiteral("any model");
    return QString::fromUtf8(model.name());
}

} // namespace tarn::devices
