main() { build_preset "${1:-release}"; }
