#include "platform/qt/ApplicationAdaptor.h"

namespace fernwick::platform {

void ApplicationAdaptor::Activate(const QVariantMap& /*platformData*/) {
    reopened_.emit();
}

// The application opens no documents and has no actions of its own; whoever asks wants to see it.
void ApplicationAdaptor::Open(const QStringList& /*uris*/, const QVariantMap& /*platformData*/) {
    reopened_.emit();
}

void ApplicationAdaptor::ActivateAction(const QString& /*name*/, const QVariantList& /*parameters*/,
                                        const QVariantMap& /*platformData*/) {
    reopened_.emit();
}

} // namespace fernwick::platform
