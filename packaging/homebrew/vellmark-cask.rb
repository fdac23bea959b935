# The disk image of a release. Version and digest are those of the signed image.
cask "vellmark" do
  version "0.1.0"
  sha256 "0000000000000000000000000000000000000000000000000000000000000000"

  url "https://vellmark.example/download/Vellmark-#{version}.dmg"
  name "Vellmark"
  desc "Usage of coding agents' quotas in the menu bar"
  homepage "https://vellmark.example/en/"

  depends_on macos: ">= :ventura"

  app "Vellmark.app"
  binary "#{appdir}/Vellmark.app/Contents/Helpers/vellmark"

  uninstall quit: "app.vellmark.Vellmark"

  zap trash: [
    "~/Library/Application Support/Vellmark",
    "~/Library/Preferences/app.vellmark.Vellmark.plist",
  ]
end
