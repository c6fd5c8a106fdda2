// Another program that uses the keyring of the session: KEYRING-PROGRAM create SERVICE ACCOUNT VALUE makes one
// more item, KEYRING-PROGRAM list SERVICE ACCOUNT prints label, schema and value of each, a line each.
#include <cstdio>
#include <cstring>
#include <libsecret/secret.h>

namespace {

const SecretSchema* schema() {
    static const SecretSchema kSchema = [] {
        SecretSchema made{};
        made.name = "org.example.Other";
        made.flags = SECRET_SCHEMA_DONT_MATCH_NAME;
        made.attributes[0] = {"service", SECRET_SCHEMA_ATTRIBUTE_STRING};
        made.attributes[1] = {"account", SECRET_SCHEMA_ATTRIBUTE_STRING};
        return made;
    }();
    return &kSchema;
}

void list(SecretService* service, GHashTable* attributes) {
    const auto flags = static_cast<SecretSearchFlags>(SECRET_SEARCH_ALL | SECRET_SEARCH_LOAD_SECRETS);
    GList* found = secret_service_search_sync(service, schema(), attributes, flags, nullptr, nullptr);
    for (GList* each = found; each != nullptr; each = each->next) {
        auto* item = static_cast<SecretItem*>(each->data);
        char* label = secret_item_get_label(item);
        char* name = secret_item_get_schema_name(item);
        SecretValue* value = secret_item_get_secret(item);
        std::printf("%s|%s|%s\n", label, name, value == nullptr ? "locked" : secret_value_get_text(value));
        g_clear_pointer(&value, secret_value_unref);
        g_free(name);
        g_free(label);
    }
    g_list_free_full(found, g_object_unref);
}

bool create(SecretService* service, GHashTable* attributes, const char* text) {
    SecretCollection* collection = secret_collection_for_alias_sync(service, SECRET_COLLECTION_DEFAULT,
                                                                    SECRET_COLLECTION_NONE, nullptr, nullptr);
    SecretValue* value = secret_value_new(text, -1, "text/plain");
    SecretItem* item = secret_item_create_sync(collection, schema(), attributes, "by another program", value,
                                               SECRET_ITEM_CREATE_NONE, nullptr, nullptr);
    const bool made = item != nullptr;
    secret_value_unref(value);
    g_clear_object(&item);
    g_clear_object(&collection);
    return made;
}

} // namespace

int main(int count, char** arguments) {
    SecretService* service = secret_service_get_sync(SECRET_SERVICE_OPEN_SESSION, nullptr, nullptr);
    if (service == nullptr || count < 4) {
        return 1;
    }
    GHashTable* attributes =
        secret_attributes_build(schema(), "service", arguments[2], "account", arguments[3], nullptr);
    bool done = true;
    if (count == 5 && std::strcmp(arguments[1], "create") == 0) {
        done = create(service, attributes, arguments[4]);
    } else {
        list(service, attributes);
    }
    g_hash_table_unref(attributes);
    g_object_unref(service);
    return done ? 0 : 1;
}
