// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_REELDB_CLIENT_PASS_H
#define REELDB_REELDB_CLIENT_PASS_H

class ReelDbClient;

namespace reeldb {

/// The client that a notification pass is at. Passes nest: a handler may cause another notification. A client that ends
/// inside its own handler takes itself out of every pass, so that no pass calls it again. Main thread only.
class ClientPass {
public:
  ClientPass();
  ~ClientPass();
  ClientPass(const ClientPass&) = delete;
  ClientPass& operator=(const ClientPass&) = delete;

  void visit(ReelDbClient* client) { current_ = client; }
  ReelDbClient* current() const { return current_; } ///< null once the client has ended

  static void clientEnds(const ReelDbClient* client);

private:
  static ClientPass* innermost_;
  ClientPass* outer_;
  ReelDbClient* current_;
};

} // namespace reeldb

#endif
