// Messages, the in-memory store and the process's default store.
#include <Host/chat_store.h>

#include <algorithm>
#include <chrono>

namespace host {

namespace {
double now() {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}
}  // namespace

Message Message::incomingText(std::string text) {
    Message m;
    m.text = std::move(text);
    m.date = now();
    return m;
}

Message Message::outgoingText(std::string text) {
    Message m = incomingText(std::move(text));
    m.outgoing = true;
    return m;
}

Message Message::document(std::string fileName, std::string filePath, std::uint64_t size) {
    Message m;
    m.kind = Kind::Document;
    m.outgoing = true;
    m.date = now();
    m.text = std::move(fileName);
    m.filePath = std::move(filePath);
    m.fileSize = size;
    return m;
}

MemoryChatStore::Chat* MemoryChatStore::find(const std::string& name) {
    const auto it =
        std::find_if(chats_.begin(), chats_.end(), [&](const Chat& c) { return c.name == name; });
    return it == chats_.end() ? nullptr : &*it;
}

const MemoryChatStore::Chat* MemoryChatStore::find(const std::string& name) const {
    return const_cast<MemoryChatStore*>(this)->find(name);
}

std::vector<std::string> MemoryChatStore::chatNames() const {
    std::lock_guard guard(lock_);
    std::vector<std::string> names;
    for (const Chat& c : chats_) names.push_back(c.name);
    return names;
}

bool MemoryChatStore::hasChat(const std::string& name) const {
    std::lock_guard guard(lock_);
    return find(name) != nullptr;
}

void MemoryChatStore::addChat(const std::string& name) {
    std::lock_guard guard(lock_);
    if (find(name) == nullptr) chats_.push_back(Chat{name, {}});
}

std::vector<Message> MemoryChatStore::messages(const std::string& chat) const {
    std::lock_guard guard(lock_);
    const Chat* c = find(chat);
    return c != nullptr ? c->messages : std::vector<Message>{};
}

std::int64_t MemoryChatStore::chatId(const std::string& name) {
    std::lock_guard guard(lock_);
    if (find(name) == nullptr) chats_.push_back(Chat{name, {}});
    return find(name) - chats_.data() + 1;
}

std::int64_t MemoryChatStore::append(const std::string& chat, Message message) {
    std::lock_guard guard(lock_);
    Chat* c = find(chat);
    if (c == nullptr) {
        chats_.push_back(Chat{chat, {}});
        c = &chats_.back();
    }
    message.id = ++lastId_;
    c->messages.push_back(std::move(message));
    return lastId_;
}

void MemoryChatStore::update(const Message& message) {
    std::lock_guard guard(lock_);
    for (Chat& c : chats_) {
        for (Message& m : c.messages) {
            if (m.id != message.id) continue;
            m.state = message.state;
            m.progress = message.progress;
            m.failure = message.failure;
            m.filePath = message.filePath;
            m.fileSize = message.fileSize;
            m.uniformType = message.uniformType;
            m.mimeType = message.mimeType;
            return;
        }
    }
}

namespace {
struct DefaultStore {
    std::mutex lock;
    std::shared_ptr<ChatStore> store;
};
DefaultStore& defaultStore() {
    static DefaultStore holder;
    return holder;
}
}  // namespace

std::shared_ptr<ChatStore> defaultChatStore() {
    DefaultStore& holder = defaultStore();
    std::lock_guard guard(holder.lock);
    if (!holder.store) {
        holder.store = SqliteChatStore::open(SqliteChatStore::defaultPath());
    }
    return holder.store;
}

void setDefaultChatStore(std::shared_ptr<ChatStore> store) {
    DefaultStore& holder = defaultStore();
    std::lock_guard guard(holder.lock);
    holder.store = std::move(store);
}

}  // namespace host
