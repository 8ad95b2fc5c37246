#include "rqbase/platform/empreinte.h"

#include <openssl/evp.h>

#include <algorithm>
#include <cstdio>
#include <memory>

namespace rqbase {

std::string EmpreinteMd5(const std::string& texte, size_t tranche) {
  if (tranche == 0) tranche = 16;
  unsigned char empreinte[EVP_MAX_MD_SIZE];
  unsigned int longueur = 0;
  std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> ctx(EVP_MD_CTX_new(), EVP_MD_CTX_free);
  EVP_DigestInit_ex(ctx.get(), EVP_md5(), nullptr);
  for (size_t i = 0; i < texte.size(); i += tranche)
    EVP_DigestUpdate(ctx.get(), texte.data() + i, std::min(tranche, texte.size() - i));
  EVP_DigestFinal_ex(ctx.get(), empreinte, &longueur);
  std::string hex;
  char chiffres[3];
  for (unsigned int i = 0; i < longueur; ++i) {
    std::snprintf(chiffres, sizeof chiffres, "%02x", empreinte[i]);
    hex += chiffres;
  }
  return hex;
}

}  // namespace rqbase
