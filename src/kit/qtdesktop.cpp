#include "kit/qtdesktop.h"

#include <QDesktopServices>
#include <QUrl>

namespace bmr::kit {

bool QtDesktop::OpenWeb(const std::string& url) {
    const QUrl address(QString::fromStdString(url), QUrl::TolerantMode);
    return address.isValid() && QDesktopServices::openUrl(address);
}

bool QtDesktop::OpenMail(const std::string& address) {
    QUrl mail;
    mail.setScheme("mailto");
    mail.setPath(QString::fromStdString(address));
    return QDesktopServices::openUrl(mail);
}

bool QtDesktop::Dial(const std::string& number, const std::string&) {
    QUrl telephone;
    telephone.setScheme("tel");
    telephone.setPath(QString::fromStdString(number));
    return QDesktopServices::openUrl(telephone);
}

}  // namespace bmr::kit
