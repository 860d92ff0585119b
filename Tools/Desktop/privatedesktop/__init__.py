"""A private desktop for tests: message bus, X server and sound server, with no screen."""

from .session import Options, Session, SessionError

__all__ = ["Options", "Session", "SessionError"]
