#include "ui/ProviderLogo.h"

#include "probes/ProviderRegistry.h"
#include "ui/Conversions.h"

#include <QFileIconProvider>
#include <QFileInfo>
#include <QIcon>
#include <QImageReader>

#include <map>

namespace vellmark {

namespace {

/// Twice the largest side at which a logo is shown, for screens of two pixels a point.
constexpr int imageSide = 88;

QImage imageFile(const QString& path) {
    // Looking for the format of a file that is not there loads every plugin for images.
    if (!QFileInfo::exists(path)) {
        return {};
    }
    QImageReader reader(path);
    if (!reader.canRead()) {
        return {};
    }
    const QSize size = reader.size();
    if (size.isValid() && (size.width() > imageSide || size.height() > imageSide)) {
        reader.setScaledSize(size.scaled(imageSide, imageSide, Qt::KeepAspectRatio));
    }
    return reader.read();
}

/// An application's icon; only a bundle has one.
QImage appIcon(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists() || !info.isBundle()) {
        return {};
    }
    return QFileIconProvider().icon(info).pixmap(imageSide, imageSide).toImage();
}

QImage firstImage(const std::vector<ProviderLogoSource>& sources) {
    for (const ProviderLogoSource& source : sources) {
        const QString path = qString(source.path);
        QImage image =
            source.kind == ProviderLogoSource::Kind::appIcon ? appIcon(path) : imageFile(path);
        if (!image.isNull()) {
            return image;
        }
    }
    return {};
}

kit::LogoLook makeLogo(const AgentProviderID& id) {
    kit::LogoLook look;
    const ProviderDescriptor* descriptor = providerDescriptor(id);
    if (descriptor == nullptr) {
        look.letter = qString(id.rawValue).left(1).toUpper();
        look.accentLight = kit::Theme::light().color(kit::ColorRole::none);
        look.accentDark = kit::Theme::dark().color(kit::ColorRole::none);
        return look;
    }
    look.image = firstImage(descriptor->logo);
    look.letter = qString(descriptor->fallbackLetter);
    look.accentLight = qColor(descriptor->accentLight);
    look.accentDark = qColor(descriptor->accentDark);
    return look;
}

} // namespace

const kit::LogoLook& providerLogo(const AgentProviderID& id) {
    static std::map<AgentProviderID, kit::LogoLook> known;
    const auto found = known.find(id);
    return found != known.end() ? found->second : known.emplace(id, makeLogo(id)).first->second;
}

} // namespace vellmark
