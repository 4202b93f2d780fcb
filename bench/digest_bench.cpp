// Speed of the digests beside the libraries that do the same job in the same
// process: MD5 against OpenSSL's EVP interface, CRC-32 against zlib's crc32.
// The ratio is ours over the peer's time per call. Our members also turn the
// text into its ANSI bytes and the digest into a new hexadecimal String; the
// peers' rows include only a hexadecimal print into a stack buffer, so the
// ratio of the member rows overstates the cost of the digest itself, and the
// raw rows (Md5::Of, Crc32::Of) compare the cores alone.
#include <openssl/evp.h>
#include <zlib.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include "server/Dispatch.h"
#include "services/Crc32.h"
#include "services/Md5.h"
#include "services/VT.h"

using namespace vantor;
using namespace vantor::services;

namespace {

long g_iterations = 200000;

double NanosPerCall(const std::function<void()>& f, long iterations) {
  for (int i = 0; i < 1000; ++i) f();  // warm caches and the allocator
  const auto start = std::chrono::steady_clock::now();
  for (long i = 0; i < iterations; ++i) f();
  const auto end = std::chrono::steady_clock::now();
  return std::chrono::duration<double, std::nano>(end - start).count() /
         static_cast<double>(iterations);
}

double Row(const char* what, const std::function<void()>& ours, const char* peerName,
           const std::function<void()>& peer, long iterations = g_iterations) {
  const double a = NanosPerCall(ours, iterations);
  const double b = NanosPerCall(peer, iterations);
  std::printf("%-34s %9.1f ns  %-20s %9.1f ns  ratio %5.2f  (%.2f M calls/s)\n", what, a, peerName,
              b, a / b, 1000.0 / a);
  return a;
}

void HexInto(const unsigned char* digest, unsigned int n, char* out) {
  static const char kDigits[] = "0123456789abcdef";
  for (unsigned int i = 0; i < n; ++i) {
    out[2 * i] = kDigits[digest[i] >> 4];
    out[2 * i + 1] = kDigits[digest[i] & 0xF];
  }
  out[2 * n] = '\0';
}

// OpenSSL's MD5 the fast way: the algorithm fetched once, the context reused.
class OpenSslMd5 {
 public:
  OpenSslMd5() : md_(EVP_MD_fetch(nullptr, "MD5", nullptr)), ctx_(EVP_MD_CTX_new()) {}
  ~OpenSslMd5() {
    EVP_MD_CTX_free(ctx_);
    EVP_MD_free(md_);
  }
  OpenSslMd5(const OpenSslMd5&) = delete;
  OpenSslMd5& operator=(const OpenSslMd5&) = delete;
  bool Ready() const { return md_ != nullptr && ctx_ != nullptr; }

  unsigned int Digest(const void* data, size_t size, unsigned char* out) {
    unsigned int n = 0;
    EVP_DigestInit_ex(ctx_, md_, nullptr);
    EVP_DigestUpdate(ctx_, data, size);
    EVP_DigestFinal_ex(ctx_, out, &n);
    return n;
  }

 private:
  EVP_MD* md_;
  EVP_MD_CTX* ctx_;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && std::strcmp(argv[1], "--quick") == 0) g_iterations = 20000;
  const VT vt;
  OpenSslMd5 openssl;
  if (!openssl.Ready()) {
    std::printf("OpenSSL offers no MD5 here; nothing to compare\n");
    return 1;
  }

  const String shortText = u"abc";
  const std::string shortBytes = "abc";
  const String cpfText = u"123.456.789-09 Ação";  // a typical short field, accents included
  const std::string cpfBytes = ToAnsi(cpfText);
  const std::string kilobytes(4096, 'q');
  const String kilotext(4096, u'q');
  const std::vector<uint8_t> block(64, 0x5A);
  unsigned char digest[EVP_MAX_MD_SIZE];
  char hex[2 * EVP_MAX_MD_SIZE + 1];

  // Our answers must be the peers' before any time is worth reading.
  for (const auto& [text, bytes] : {std::pair{shortText, shortBytes}, std::pair{cpfText, cpfBytes},
                                    std::pair{kilotext, kilobytes}}) {
    HexInto(digest, openssl.Digest(bytes.data(), bytes.size(), digest), hex);
    if (ToUtf8(vt.VT_MD5(text)) != hex) {
      std::printf("VT_MD5 disagrees with OpenSSL on a %zu-byte text\n", bytes.size());
      return 1;
    }
    char crc[9];
    std::snprintf(
        crc, sizeof crc, "%lX",
        crc32(0L, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(bytes.size())));
    if (text == kilotext && ToUtf8(vt.VT_CRC32(text)) != crc) {
      std::printf("VT_CRC32 disagrees with zlib\n");
      return 1;
    }
  }

  std::printf("%-34s %12s  %-20s %12s\n", "operation", "ours", "peer", "peer time");
  const double md5Short = Row(
      "VT_MD5(\"abc\")", [&] { benchmark::DoNotOptimize(vt.VT_MD5(shortText)); }, "EVP MD5 + hex",
      [&] {
        HexInto(digest, openssl.Digest(shortBytes.data(), shortBytes.size(), digest), hex);
        benchmark::DoNotOptimize(hex);
      });
  const double md5Field = Row(
      "VT_MD5(19-char field)", [&] { benchmark::DoNotOptimize(vt.VT_MD5(cpfText)); },
      "EVP MD5 + hex",
      [&] {
        HexInto(digest, openssl.Digest(cpfBytes.data(), cpfBytes.size(), digest), hex);
        benchmark::DoNotOptimize(hex);
      });
  Row(
      "VT_MD5(4 KiB)", [&] { benchmark::DoNotOptimize(vt.VT_MD5(kilotext)); }, "EVP MD5 + hex",
      [&] {
        HexInto(digest, openssl.Digest(kilobytes.data(), kilobytes.size(), digest), hex);
        benchmark::DoNotOptimize(hex);
      },
      g_iterations / 20);
  Row(
      "Md5::Of(64 bytes)", [&] { benchmark::DoNotOptimize(Md5::Of(block)); }, "EVP MD5",
      [&] { benchmark::DoNotOptimize(openssl.Digest(block.data(), block.size(), digest)); });
  Row(
      "VT_CRC32(\"abc\")", [&] { benchmark::DoNotOptimize(vt.VT_CRC32(shortText)); }, "zlib crc32",
      [&] {
        benchmark::DoNotOptimize(crc32(0L, reinterpret_cast<const Bytef*>(shortBytes.data()), 3));
      });
  Row(
      "VT_CRC32(4 KiB)", [&] { benchmark::DoNotOptimize(vt.VT_CRC32(kilotext)); }, "zlib crc32",
      [&] {
        benchmark::DoNotOptimize(crc32(0L, reinterpret_cast<const Bytef*>(kilobytes.data()),
                                       static_cast<uInt>(kilobytes.size())));
      },
      g_iterations / 20);
  Row(
      "Crc32::Of(4 KiB)",
      [&] {
        benchmark::DoNotOptimize(
            Crc32::Of({reinterpret_cast<const uint8_t*>(kilobytes.data()), kilobytes.size()}));
      },
      "zlib crc32",
      [&] {
        benchmark::DoNotOptimize(crc32(0L, reinterpret_cast<const Bytef*>(kilobytes.data()),
                                       static_cast<uInt>(kilobytes.size())));
      },
      g_iterations / 20);
  // Late-bound, as a host calls it: the dispatcher's share of the time.
  VT late;
  Row(
      "VT_MD5 through Invoke",
      [&] { benchmark::DoNotOptimize(server::Call(late, "VT_MD5", shortText)); }, "VT_MD5 direct",
      [&] { benchmark::DoNotOptimize(vt.VT_MD5(shortText)); });
  // The cipher has no peer in any library here; its figure is for trends.
  const String secret = u"senha do banco de dados: 1234";
  const String sealed = vt.VT_Criptografar(secret, u"00998877665544332211");
  Row(
      "VT_Criptografar(29 chars)",
      [&] { benchmark::DoNotOptimize(vt.VT_Criptografar(secret, u"00998877665544332211")); },
      "VT_Decriptografar",
      [&] { benchmark::DoNotOptimize(vt.VT_Decriptografar(sealed, u"00998877665544332211")); });

  const double rate = 1000.0 / std::max(md5Short, md5Field);
  std::printf(
      "target: VT_MD5 on short inputs at 1 M calls/s or more: %s (%.2f M calls/s at the slower of "
      "two)\n",
      rate >= 1.0 ? "holds" : "NOT MET", rate);
  return 0;
}
