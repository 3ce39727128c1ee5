#include <Util/LinksUtils.h>

#include <atomic>

namespace Zelkor::Util
{
namespace
{

std::atomic<bool> g_useHttps(true);

QString const g_http = QStringLiteral("http://");
QString const g_https = QStringLiteral("https://");

} // namespace

void SetDefaultSslUsage(bool use)
{
    g_useHttps.store(use);
}

bool GetDefaultSslUsage()
{
    return g_useHttps.load();
}

QString ReplaceUrlProtocol(QString url)
{
    bool const useHttps = g_useHttps.load();
    url.replace(useHttps ? g_http : g_https, useHttps ? g_https : g_http, Qt::CaseInsensitive);
    return url;
}

} // namespace Zelkor::Util
