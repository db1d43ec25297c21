#ifndef PROJECT_STOREOPENOPTIONS_H
#define PROJECT_STOREOPENOPTIONS_H

// StoreOpenOptions: what an opener asks of a store beyond its name. Six
// flags; the first three can only be raised, never cleared, since a back end
// that honoured one cannot take it back.
//
// Packed form: frame 6673, version 5, the six flags as bools in the order
// below. A reader of an older frame reads only the flags that frame holds;
// the others keep their present values.

#include "foundation/Packable.h"

class StoreOpenOptions : public Packable {
 public:
  static const short Magic = 6673;
  static const short Version = 5;

  StoreOpenOptions();
  StoreOpenOptions(StoreOpenOptions const& other) = default;
  StoreOpenOptions& operator=(StoreOpenOptions const& other) = default;
  ~StoreOpenOptions() override;

  // The opener wants the cross-domain attributes of a Kelp store.
  bool hasKelpCrossDomainAttributes() const { return m_kelpCrossDomainAttributes; }
  void setKelpCrossDomainAttributes() { m_kelpCrossDomainAttributes = true; }
  // A Dorn store deals with one attribute set only.
  bool hasDornOnlyDealWithOneAttributeSet() const { return m_dornOnlyDealWithOneAttributeSet; }
  void setDornOnlyDealWithOneAttributeSet() { m_dornOnlyDealWithOneAttributeSet = true; }
  // Attributes are read sparsely.
  bool getSparseReadOfAttributes() const { return m_sparseReadOfAttributes; }
  void setSparseReadOfAttributes() { m_sparseReadOfAttributes = true; }
  // Compressed traces are decompressed on reading (true by default).
  bool getAutoDecompress() const { return m_autoDecompress; }
  void setAutoDecompress(bool on) { m_autoDecompress = on; }
  // The restore-mute view is wanted.
  bool getRestoreMute() const { return m_restoreMute; }
  void setRestoreMute(bool on) { m_restoreMute = on; }
  // A Nyx file without a format spec gets one found for it.
  bool getAutoSpecifyCSTFiles() const { return m_autoSpecifyCSTFiles; }
  void setAutoSpecifyCSTFiles(bool on) { m_autoSpecifyCSTFiles = on; }

  bool operator==(StoreOpenOptions const& other) const;
  bool operator!=(StoreOpenOptions const& other) const { return !(*this == other); }

  void pack(Packer& packer) const override;
  void unpack(Packer& packer) override;

 private:
  bool m_kelpCrossDomainAttributes;
  bool m_dornOnlyDealWithOneAttributeSet;
  bool m_sparseReadOfAttributes;
  bool m_autoDecompress;
  bool m_restoreMute;
  bool m_autoSpecifyCSTFiles;
};

#endif
