"""What else lives in a private session: a screen reader, a tray, a client that grabs keys, a login manager."""
