"""A desktop of one's own for tests: message bus, X server and sound server, private and headless."""

from .session import Options, Session, SessionError

__all__ = ["Options", "Session", "SessionError"]
